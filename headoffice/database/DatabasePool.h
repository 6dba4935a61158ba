#pragma once

#include "db/Engine.h"
#include "headoffice/database/DatabaseLogin.h"
#include "headoffice/database/DatabaseSession.h"

#include <chrono>
#include <cstddef>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <stop_token>

namespace quillet::headoffice {

/// Open databases, lent to one call at a time. A session that comes back is put into the state in
/// which it was opened, or closed where that cannot be done, so that nobody finds a transaction, a
/// variable, a lock or a temporary table of somebody else; and only who names the same database,
/// user and password gets it. One that the database has closed meanwhile is replaced unseen.
///
/// The driver manager's own pool is not used: it hands sessions on as they were left, because
/// MariaDB's ODBC driver accepts a reset and does nothing (observed with 3.1.15).
///
/// May be used from several threads. It must outlive them.
class DatabasePool {
public:
    using Open = std::function<std::unique_ptr<db::Engine>(const DatabaseLogin&)>;

    struct Limits {
        std::chrono::seconds call{300}; ///< how long the database may work for a call
        std::size_t idle = 16;          ///< sessions that are kept
        std::chrono::seconds keep{60};  ///< how long an idle session is kept
    };

    DatabasePool(Open open, Limits limits);

    /// @param gone asked to stop when nobody waits for the call any more.
    /// @throws data::Error when the database cannot be opened: whether it answers, and no more.
    DatabaseSession lend(const DatabaseLogin& login, std::stop_token gone);

    struct Counts {
        std::size_t open = 0;  ///< lent and idle
        std::size_t inUse = 0; ///< lent
    };
    Counts counts();

private:
    friend class DatabaseSession;

    struct Idle {
        DatabaseLogin login;
        std::unique_ptr<db::Engine> engine;
        std::chrono::steady_clock::time_point since;
    };

    void removeOld(std::list<Idle>& removed);
    std::unique_ptr<db::Engine> takeIdle(const DatabaseLogin& login);
    std::unique_ptr<db::Engine> open(const DatabaseLogin& login);
    void giveBack(const DatabaseLogin& login, std::unique_ptr<db::Engine> engine) noexcept;

    Open open_;
    Limits limits_;
    std::mutex mutex_;
    std::list<Idle> idle_; ///< the latest first
    std::size_t inUse_ = 0;
};

} // namespace quillet::headoffice
