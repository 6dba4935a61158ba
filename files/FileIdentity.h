#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

namespace quillet::files {

/// Which file a path leads to, whatever its name: the number that its file system has for it.
struct FileIdentity {
    std::uint64_t device = 0; ///< of the file system
    std::uint64_t number = 0; ///< in it

    /// @return nothing where there is no file, or it cannot be asked.
    static std::optional<FileIdentity> of(const std::filesystem::path& file) noexcept;

    bool operator==(const FileIdentity&) const = default;
};

} // namespace quillet::files
