#include "db/mariadb/MariaDbSession.h"

#include "db/mariadb/MariaDbError.h"

#include <chrono>
#include <mysqld_error.h>
#include <string>

namespace quillet::db {

namespace {

using namespace std::chrono_literals;

constexpr auto KillTimeout = 3s; ///< for each step of the second connection
constexpr auto KillAgainAfter = 100ms;
constexpr int Kills = 20;

MariaDbLogin forKilling(MariaDbLogin login) {
    login.database.clear();
    login.connectTimeout = login.readTimeout = login.writeTimeout = KillTimeout;
    return login;
}

} // namespace

MariaDbSession::MariaDbSession(const MariaDbLogin& login)
    : login_(login), connection_(login),
      socket_(static_cast<std::uintptr_t>(mysql_get_socket(connection_.get()))),
      threadId_(mysql_thread_id(connection_.get())) {}

void MariaDbSession::run(const std::string& statement) {
    const Turn turn(*this);
    try {
        connection_.run(statement);
    } catch (const data::Error&) {
        noteFailure(mysql_errno(get()));
        throw;
    }
}

void MariaDbSession::noteFailure(unsigned number) noexcept {
    if (isMariaDbClientError(number) || number == ER_CONNECTION_KILLED ||
        number == ER_SERVER_SHUTDOWN)
        lost_ = true;
}

void MariaDbSession::cancel() noexcept try {
    std::unique_lock lock(mutex_);
    if (phase_ == Phase::Idle || lost_)
        return;
    cancelled_ = true;
    killStatement(lock);
} catch (...) {
    // Without a lock nothing is known of what runs.
}

/// Holds the lock but while it waits, so that the statement cannot end meanwhile and another one
/// begin.
void MariaDbSession::killStatement(std::unique_lock<std::mutex>& lock) {
    const std::uint64_t turn = turn_;
    const auto needsNoMore = [&] { return turn_ != turn || phase_ == Phase::Started; };
    try {
        const MariaDbHandle second(forKilling(login_));
        const std::string kill = "KILL QUERY " + std::to_string(threadId_);
        // A statement that has not reached the server yet does not notice.
        for (int i = 0; i < Kills; ++i) {
            second.run(kill);
            if (changed_.wait_for(lock, i == 0 ? 0ms : KillAgainAfter, needsNoMore))
                return;
        }
    } catch (const data::Error&) {
        // Then the hard way.
    }
    lost_ = true;
    socket_.shutDown();
}

bool MariaDbSession::reset() try {
    const Turn turn(*this);
    if (!connection_.reset(login_))
        lost_ = true;
    return !lost_;
} catch (const data::Error&) {
    return false;
}

MariaDbSession::Turn::Turn(MariaDbSession& session) : session_(session) {
    const std::lock_guard lock(session_.mutex_);
    if (session_.lost_)
        throw mariaDbConnectionLost();
    if (session_.phase_ != Phase::Idle)
        throw data::providerError("HY010",
                                  "Another result of this connection is still being read.");
    session_.phase_ = Phase::Sent;
}

MariaDbSession::Turn::~Turn() {
    bool cancelled = false;
    {
        const std::lock_guard lock(session_.mutex_);
        session_.phase_ = Phase::Idle;
        ++session_.turn_;
        cancelled = session_.cancelled_.exchange(false);
    }
    session_.changed_.notify_all();
    // The server may have been told after it had finished, and may remember it for what comes next.
    // MariaDB does not (10.11); nobody promises that.
    constexpr std::string_view Nothing = "DO 0";
    if (cancelled && !session_.lost_)
        mysql_real_query(session_.get(), Nothing.data(), Nothing.size());
}

void MariaDbSession::Turn::hasStarted() {
    {
        const std::lock_guard lock(session_.mutex_);
        session_.phase_ = Phase::Started;
    }
    session_.changed_.notify_all();
}

void MariaDbSession::Turn::requireNotCancelled() const {
    if (session_.cancelled_)
        throw data::providerError("70100", "Query execution was interrupted");
}

data::Error MariaDbSession::Turn::failure(MYSQL_STMT* statement) const {
    // What goes wrong between rows is noted with the connection alone.
    const unsigned number = mysql_stmt_errno(statement);
    session_.noteFailure(number != 0 ? number : mysql_errno(session_.get()));
    return number != 0 ? mariaDbError(statement) : mariaDbError(session_.get());
}

} // namespace quillet::db
