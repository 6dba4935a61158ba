#pragma once

#include <filesystem>
#include <memory>
#include <string>

namespace quillet::app {

/// One window for one store: the second would read the stamps that the first is about to change.
///
/// The lock is the operating system's, on the store's file itself: it goes with the process however
/// that ends, and every name of the file (symbolic links, hard links, a network path) meets the
/// same one. It covers a single byte far behind the end of the file, where no database engine
/// looks.
///
/// A process has one window. Two in one process exclude each other as well, but on POSIX systems
/// giving up the second one's try lets go of the locks that an engine in the process holds on the
/// file (fcntl(2)).
class StoreLock {
public:
    enum class Outcome {
        Held,          ///< until the object goes
        HeldElsewhere, ///< another window has it
        NotPossible    ///< the file system has no locks, or there is no such file; see reason()
    };

    /// Tries once.
    explicit StoreLock(const std::filesystem::path& store);
    ~StoreLock();
    StoreLock(const StoreLock&) = delete;
    StoreLock& operator=(const StoreLock&) = delete;

    Outcome outcome() const noexcept { return outcome_; }

    /// Why it is not possible; otherwise empty.
    const std::string& reason() const noexcept { return reason_; }

private:
    struct File;

    std::unique_ptr<File> file_;
    Outcome outcome_ = Outcome::NotPossible;
    std::string reason_;
};

} // namespace quillet::app
