#pragma once

#include <atomic>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

namespace quillet::tests {

/// A folder that goes with the object.
class TempFolder {
public:
    TempFolder()
        : path_(std::filesystem::temp_directory_path() /
                ("quillet-" + std::to_string(std::random_device{}()) + "-" +
                 std::to_string(++counter()))) {
        std::filesystem::create_directories(path_);
    }
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const std::filesystem::path& path() const noexcept { return path_; }
    std::filesystem::path operator/(const std::string& name) const { return path_ / name; }

private:
    static std::atomic<int>& counter() {
        static std::atomic<int> count{0};
        return count;
    }
    std::filesystem::path path_;
};

inline std::string readFile(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

inline void writeFile(const std::filesystem::path& file, const std::string& bytes) {
    std::ofstream(file, std::ios::binary) << bytes;
}

/// The contents of the only file in a folder, or what is wrong with that.
inline std::string readOnlyFileIn(const std::filesystem::path& folder) {
    if (!std::filesystem::exists(folder))
        return "no folder";
    std::string contents = "no file";
    int files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        contents = readFile(entry.path());
        ++files;
    }
    return files > 1 ? std::to_string(files) + " files" : contents;
}

} // namespace quillet::tests
