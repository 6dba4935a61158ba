#pragma once

#include "data/Error.h"
#include "db/mariadb/MariaDbHandle.h"
#include "db/mariadb/MariaDbSocket.h"

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>

namespace quillet::db {

/// A connection that does one thing at a time, and lets another thread end it.
class MariaDbSession {
public:
    explicit MariaDbSession(const MariaDbLogin& login);

    const MariaDbLogin& login() const noexcept { return login_; }
    MYSQL* get() const noexcept { return connection_.get(); }

    /// Whether nothing more can be done with the connection, as far as is known.
    bool isLost() const noexcept { return lost_; }

    /// Runs one statement and drops its rows.
    void run(const std::string& statement);

    /// See Engine::cancel(). Another statement than the one that runs is never hit: it cannot begin
    /// before this has returned.
    void cancel() noexcept;

    /// See Engine::reset().
    bool reset();

    /// The time of one statement, from before it is sent until nothing of its result is left.
    class Turn {
    public:
        /// @throws Error when the connection is lost, or a result is still being read.
        explicit Turn(MariaDbSession& session);
        ~Turn();
        Turn(const Turn&) = delete;
        Turn& operator=(const Turn&) = delete;

        /// The server runs the statement: told once to end it, it will.
        void hasStarted();

        /// @throws Error when the statement has been ended from another thread, whether or not the
        ///         database noticed.
        void requireNotCancelled() const;

        /// Why a call failed, as mariaDbError() says it; notes whether the connection is lost.
        data::Error failure(MYSQL_STMT* statement) const;

        void cancel() const noexcept { session_.cancel(); }

    private:
        MariaDbSession& session_;
    };

private:
    enum class Phase : std::uint8_t {
        Idle,
        Sent,   ///< on its way to the server, or running there
        Started ///< known to run there
    };

    void noteFailure(unsigned number) noexcept;
    void killStatement(std::unique_lock<std::mutex>& lock);

    const MariaDbLogin login_;
    const MariaDbHandle connection_;
    const MariaDbSocket socket_;
    const unsigned long threadId_;

    std::mutex mutex_; ///< of all below
    std::condition_variable changed_;
    Phase phase_ = Phase::Idle;
    std::uint64_t turn_ = 0; ///< counts the statements
    std::atomic<bool> cancelled_ = false;
    std::atomic<bool> lost_ = false;
};

} // namespace quillet::db
