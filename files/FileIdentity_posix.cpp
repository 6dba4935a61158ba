#include "files/FileIdentity.h"

#include <sys/stat.h>

namespace quillet::files {

std::optional<FileIdentity> FileIdentity::of(const std::filesystem::path& file) noexcept {
    struct stat found {};
    if (file.empty() || ::stat(file.c_str(), &found) != 0)
        return std::nullopt;
    return FileIdentity{static_cast<std::uint64_t>(found.st_dev),
                        static_cast<std::uint64_t>(found.st_ino)};
}

} // namespace quillet::files
