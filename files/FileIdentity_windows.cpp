#include "files/FileIdentity.h"

#include <windows.h>

namespace quillet::files {

std::optional<FileIdentity> FileIdentity::of(const std::filesystem::path& file) noexcept {
    if (file.empty())
        return std::nullopt;
    // Without any access: a file that others have open, in whatever way, can still be asked.
    const HANDLE handle =
        CreateFileW(file.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                    nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (handle == INVALID_HANDLE_VALUE)
        return std::nullopt;
    BY_HANDLE_FILE_INFORMATION found{};
    const bool known = GetFileInformationByHandle(handle, &found) != 0;
    CloseHandle(handle);
    if (!known)
        return std::nullopt;
    return FileIdentity{found.dwVolumeSerialNumber, static_cast<std::uint64_t>(found.nFileIndexHigh)
                                                            << 32U |
                                                        found.nFileIndexLow};
}

} // namespace quillet::files
