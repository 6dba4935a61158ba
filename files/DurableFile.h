#pragma once

#include <filesystem>
#include <string_view>

namespace quillet::files {

/// Makes a file hold exactly these bytes, or leaves it as it was: they are written under another
/// name, brought to the disk, and renamed. When this returns, a power cut does not take them away.
/// @throws Error 75 when that cannot be done; its description names the file and the reason.
void writeDurably(const std::filesystem::path& file, std::string_view bytes);

/// Brings what anybody has written to a file, and its name, to the disk.
/// @throws Error 75 when that cannot be done.
void bringToDisk(const std::filesystem::path& file);

} // namespace quillet::files
