#include "app/StoreLock.h"

#include <cerrno>
#include <fcntl.h>
#include <limits>
#include <system_error>
#include <unistd.h>

namespace quillet::app {

namespace {

/// The last byte that a file could have.
constexpr off_t LockedByte = std::numeric_limits<off_t>::max() - 1;

int lockOf(int descriptor) {
#ifdef F_OFD_SETLK
    struct flock byte {};
    byte.l_type = F_WRLCK;
    byte.l_whence = SEEK_SET;
    byte.l_start = LockedByte;
    byte.l_len = 1;
    return ::fcntl(descriptor, F_OFD_SETLK, &byte);
#else
    // Locks of a process would go with any other closing of the file in it.
    static_cast<void>(descriptor);
    errno = ENOTSUP;
    return -1;
#endif
}

} // namespace

struct StoreLock::File {
    explicit File(const std::filesystem::path& store)
        : descriptor(::open(store.c_str(), O_RDWR | O_CLOEXEC)) {}
    ~File() {
        if (descriptor >= 0)
            ::close(descriptor);
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    const int descriptor;
};

StoreLock::StoreLock(const std::filesystem::path& store) : file_(std::make_unique<File>(store)) {
    if (file_->descriptor >= 0 && lockOf(file_->descriptor) == 0) {
        outcome_ = Outcome::Held;
        return;
    }
    const int error = errno;
    if (file_->descriptor >= 0 && (error == EAGAIN || error == EACCES))
        outcome_ = Outcome::HeldElsewhere;
    else
        reason_ = std::generic_category().message(error);
    file_.reset();
}

StoreLock::~StoreLock() = default;

} // namespace quillet::app
