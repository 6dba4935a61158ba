#pragma once

#include "db/WaitHandler.h"

#include <sqlite3.h>

#include <chrono>
#include <optional>

namespace quillet::db {

/// What a connection does when it has to wait: for another program's lock, up to a limit, and for a
/// statement of its own that takes long.
class SqliteWaits {
public:
    using Clock = std::chrono::steady_clock;

    /// @param database outlives this object.
    explicit SqliteWaits(sqlite3* database);
    ~SqliteWaits();
    SqliteWaits(const SqliteWaits&) = delete;
    SqliteWaits& operator=(const SqliteWaits&) = delete;

    /// @param handler outlives this object; null: the thread sleeps.
    void setHandler(WaitHandler* handler) noexcept { handler_ = handler; }

    /// One operation on the connection, for which a lock may be waited for so long.
    class Operation {
    public:
        Operation(SqliteWaits& waits, std::chrono::milliseconds lockLimit) noexcept;
        ~Operation();
        Operation(const Operation&) = delete;
        Operation& operator=(const Operation&) = delete;

    private:
        SqliteWaits& waits_;
    };

private:
    static int whileLocked(void* self, int calls);
    static int whileRunning(void* self);
    bool waitForLock(bool isFirst);
    bool goOnRunning();

    sqlite3* database_;
    WaitHandler* handler_ = nullptr;
    std::chrono::milliseconds lockLimit_{0};
    std::optional<Clock::time_point> lockedSince_;
    std::optional<Clock::time_point> runningSince_;
};

} // namespace quillet::db
