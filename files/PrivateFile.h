#pragma once

#include <filesystem>

namespace quillet::files {

/// Sees to it that a file is there and that nobody but its owner can open it (on Windows also
/// administrators and the system, who can open everything). One that is missing is made, empty,
/// with that protection from the first moment. One that is there keeps its contents; on POSIX
/// systems wider permissions are taken away, if it is this user's.
/// @return whether the file is there. A file system without permissions is no failure.
bool makePrivateFile(const std::filesystem::path& file) noexcept;

} // namespace quillet::files
