#include "app/StoreLock.h"

#include <windows.h>

namespace quillet::app {

struct StoreLock::File {
    explicit File(const std::filesystem::path& store)
        : handle(CreateFileW(store.c_str(), GENERIC_READ | GENERIC_WRITE,
                             FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                             FILE_ATTRIBUTE_NORMAL, nullptr)) {}
    ~File() {
        if (handle != INVALID_HANDLE_VALUE)
            CloseHandle(handle);
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    const HANDLE handle;
};

StoreLock::StoreLock(const std::filesystem::path& store) : file_(std::make_unique<File>(store)) {
    // Far behind the largest file, and behind the locks of database engines.
    OVERLAPPED byte{};
    byte.Offset = 0;
    byte.OffsetHigh = 0x40000000;
    if (file_->handle != INVALID_HANDLE_VALUE &&
        LockFileEx(file_->handle, LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0,
                   &byte) != 0) {
        outcome_ = Outcome::Held;
        return;
    }
    const DWORD error = GetLastError();
    if (file_->handle != INVALID_HANDLE_VALUE &&
        (error == ERROR_LOCK_VIOLATION || error == ERROR_IO_PENDING))
        outcome_ = Outcome::HeldElsewhere;
    else
        reason_ = "system error " + std::to_string(error);
    file_.reset();
}

StoreLock::~StoreLock() = default;

} // namespace quillet::app
