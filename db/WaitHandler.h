#pragma once

#include <chrono>

namespace quillet::db {

/// Stands by while a database keeps its caller waiting, so that a window stays alive. It is called
/// on the caller's thread, from within the operation, and must not use the connection.
class WaitHandler {
public:
    virtual ~WaitHandler() = default;

    /// Called every few milliseconds while a lock of another program is waited for.
    /// @return false gives up: the operation fails as it does when its time is over.
    virtual bool lockAwaited() = 0;

    /// Called every few milliseconds while a statement takes longer than statements do.
    /// @param soFar how long it has taken, about.
    /// @return false ends the statement, which then fails.
    virtual bool statementRuns(std::chrono::milliseconds soFar) = 0;

    /// What lockAwaited() was called for has ended, one way or the other.
    virtual void waitOver() = 0;
};

} // namespace quillet::db
