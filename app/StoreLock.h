#pragma once

#include <QLockFile>

#include <filesystem>
#include <memory>

namespace quillet::app {

/// One window for one store: the second would read the stamps that the first is about to change.
/// A file in the store's folder says so while the window lives; one that a crash has left counts
/// for nothing.
class StoreLock {
public:
    /// @return null when another window has it. A folder where no file can be made, where nothing
    ///         could be received either, counts as free.
    static std::unique_ptr<StoreLock> take(const std::filesystem::path& folder);

private:
    explicit StoreLock(const QString& file);

    QLockFile file_;
};

} // namespace quillet::app
