#include "data/Error.h"
#include "files/DurableFile.h"
#include "files/Paths.h"

#include <string>
#include <windows.h>

namespace quillet::files {

namespace {

/// @return whether all of it is on the disk.
bool writeNew(const std::filesystem::path& file, std::string_view bytes) {
    const HANDLE target = CreateFileW(file.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                      FILE_ATTRIBUTE_NORMAL, nullptr);
    if (target == INVALID_HANDLE_VALUE)
        return false;
    DWORD written = 0;
    const bool done =
        WriteFile(target, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) != 0 &&
        written == bytes.size() && FlushFileBuffers(target) != 0;
    const DWORD reason = GetLastError();
    CloseHandle(target);
    SetLastError(reason);
    return done;
}

[[noreturn]] void fail(const std::filesystem::path& file, DWORD reason) {
    throw data::Error(data::number::FileAccess, "Path/File access error: " + textOf(file) +
                                                    ": system error " + std::to_string(reason));
}

} // namespace

void writeDurably(const std::filesystem::path& file, std::string_view bytes) {
    std::filesystem::path unfinished = file;
    unfinished += ".new";
    if (writeNew(unfinished, bytes) &&
        MoveFileExW(unfinished.c_str(), file.c_str(),
                    MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0)
        return;
    const DWORD reason = GetLastError();
    DeleteFileW(unfinished.c_str());
    fail(file, reason);
}

/// A file's unwritten bytes are the file's, not the handle's through which they came
/// (learn.microsoft.com, FlushFileBuffers; it asks for the right to write).
void bringToDisk(const std::filesystem::path& file) {
    const HANDLE written = CreateFileW(file.c_str(), GENERIC_WRITE,
                                       FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                       nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (written == INVALID_HANDLE_VALUE)
        fail(file, GetLastError());
    const DWORD reason = FlushFileBuffers(written) != 0 ? ERROR_SUCCESS : GetLastError();
    CloseHandle(written);
    if (reason != ERROR_SUCCESS)
        fail(file, reason);
}

} // namespace quillet::files
