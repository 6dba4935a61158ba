#include "app/StoreLock.h"

#include "db/Paths.h"

namespace quillet::app {

StoreLock::StoreLock(const QString& file) : file_(file) {
    file_.setStaleLockTime(0); // a run takes as long as it takes
}

std::unique_ptr<StoreLock> StoreLock::take(const std::filesystem::path& folder) {
    std::unique_ptr<StoreLock> lock(
        new StoreLock(QString::fromStdString(db::textOf(folder / "quillet.lock"))));
    const bool taken = lock->file_.tryLock(0);
    return taken || lock->file_.error() != QLockFile::LockFailedError ? std::move(lock) : nullptr;
}

} // namespace quillet::app
