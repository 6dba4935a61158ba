#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace quillet::files {

/// Text inside the program is UTF-8 on every platform; paths are not.
inline std::filesystem::path pathOf(std::string_view utf8) {
    return {std::u8string(utf8.begin(), utf8.end())};
}

inline std::string textOf(const std::filesystem::path& path) {
    const std::u8string utf8 = path.u8string();
    return {utf8.begin(), utf8.end()};
}

} // namespace quillet::files
