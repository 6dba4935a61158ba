#include "db/sqlite/SqliteWaits.h"

#include <thread>

namespace quillet::db {

namespace {

/// Between two looks at the lock; no hand notices it.
constexpr std::chrono::milliseconds LockInterval{10};

/// Steps of SQLite's virtual machine between two looks around: some milliseconds, and many times
/// what a statement of a receive takes.
constexpr int StepInterval = 200'000;

} // namespace

SqliteWaits::SqliteWaits(sqlite3* database) : database_(database) {
    sqlite3_busy_handler(database_, &SqliteWaits::whileLocked, this);
    sqlite3_progress_handler(database_, StepInterval, &SqliteWaits::whileRunning, this);
}

SqliteWaits::~SqliteWaits() {
    sqlite3_busy_handler(database_, nullptr, nullptr);
    sqlite3_progress_handler(database_, 0, nullptr, nullptr);
}

int SqliteWaits::whileLocked(void* self, int calls) {
    return static_cast<SqliteWaits*>(self)->waitForLock(calls == 0) ? 1 : 0;
}

int SqliteWaits::whileRunning(void* self) {
    return static_cast<SqliteWaits*>(self)->goOnRunning() ? 0 : 1;
}

bool SqliteWaits::waitForLock(bool isFirst) {
    const auto now = Clock::now();
    if (isFirst || !lockedSince_)
        lockedSince_ = now;
    if (now - *lockedSince_ >= lockLimit_)
        return false;
    std::this_thread::sleep_for(LockInterval);
    return handler_ == nullptr || handler_->lockAwaited();
}

bool SqliteWaits::goOnRunning() {
    const auto now = Clock::now();
    if (!runningSince_)
        runningSince_ = now;
    return handler_ == nullptr ||
           handler_->statementRuns(
               std::chrono::duration_cast<std::chrono::milliseconds>(now - *runningSince_));
}

SqliteWaits::Operation::Operation(SqliteWaits& waits, std::chrono::milliseconds lockLimit) noexcept
    : waits_(waits) {
    waits_.lockLimit_ = lockLimit;
    waits_.runningSince_.reset();
}

SqliteWaits::Operation::~Operation() {
    if (!waits_.lockedSince_)
        return;
    waits_.lockedSince_.reset();
    if (waits_.handler_ != nullptr)
        waits_.handler_->waitOver();
}

} // namespace quillet::db
