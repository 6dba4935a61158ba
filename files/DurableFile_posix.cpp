#include "data/Error.h"
#include "files/DurableFile.h"
#include "files/Paths.h"

#include <cerrno>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>

namespace quillet::files {

namespace {

[[noreturn]] void fail(const std::filesystem::path& file, int reason) {
    throw data::Error(data::number::FileAccess, "Path/File access error: " + textOf(file) + ": " +
                                                    std::generic_category().message(reason));
}

class Descriptor {
public:
    Descriptor(const std::filesystem::path& file, int flags)
        : value_(::open(file.c_str(), flags | O_CLOEXEC, S_IRUSR | S_IWUSR)) {}
    ~Descriptor() {
        if (value_ >= 0)
            ::close(value_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int get() const noexcept { return value_; }

private:
    int value_;
};

/// @return 0, or why not all of it is on the disk.
int writeNew(const std::filesystem::path& file, std::string_view bytes) {
    const Descriptor target(file, O_WRONLY | O_CREAT | O_TRUNC);
    if (target.get() < 0)
        return errno;
    while (!bytes.empty()) {
        const ssize_t written = ::write(target.get(), bytes.data(), bytes.size());
        if (written < 0 && errno != EINTR)
            return errno;
        if (written > 0)
            bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return ::fsync(target.get()) == 0 ? 0 : errno;
}

/// The name of a file is on the disk when its folder is.
/// @return 0, or why not. Some file systems have no such call, and need none.
int bringNameToDisk(const std::filesystem::path& file) {
    const Descriptor folder(file.parent_path().empty() ? "." : file.parent_path(), O_RDONLY);
    const bool done =
        folder.get() < 0 || ::fsync(folder.get()) == 0 || errno == EINVAL || errno == EROFS;
    return done ? 0 : errno;
}

} // namespace

void writeDurably(const std::filesystem::path& file, std::string_view bytes) {
    std::filesystem::path unfinished = file;
    unfinished += ".new";
    int reason = writeNew(unfinished, bytes);
    if (reason == 0 && ::rename(unfinished.c_str(), file.c_str()) != 0)
        reason = errno;
    if (reason != 0) {
        ::unlink(unfinished.c_str());
        fail(file, reason);
    }
    if (const int nameless = bringNameToDisk(file); nameless != 0)
        fail(file, nameless);
}

void bringToDisk(const std::filesystem::path& file) {
    const Descriptor written(file, O_RDONLY);
    if (written.get() < 0 || ::fsync(written.get()) != 0)
        fail(file, errno);
    if (const int nameless = bringNameToDisk(file); nameless != 0)
        fail(file, nameless);
}

} // namespace quillet::files
