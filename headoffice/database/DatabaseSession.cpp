#include "headoffice/database/DatabaseSession.h"

#include "data/Error.h"
#include "headoffice/database/DatabasePool.h"
#include "headoffice/database/SqlState.h"

#include <utility>

namespace quillet::headoffice {

namespace {

/// Class 08 of the SQLSTATEs is the connection's; 70100 is said to one that a database closes as it
/// ends.
bool isLost(const data::Error& error) {
    const std::string state = sqlStateOf(error);
    return state.starts_with("08") || state == "70100";
}

} // namespace

DatabaseSession::DatabaseSession(DatabasePool& pool, DatabaseLogin login,
                                 std::unique_ptr<db::Engine> engine, bool wasUsed,
                                 std::stop_token gone, std::chrono::seconds limit)
    : pool_(pool), login_(std::move(login)), engine_(std::move(engine)), wasUsed_(wasUsed),
      gone_(std::move(gone)), limit_(limit) {
    watch_.emplace(*engine_, gone_, limit_);
}

DatabaseSession::~DatabaseSession() {
    watch_.reset();
    pool_.giveBack(login_, std::move(engine_));
}

std::unique_ptr<data::Cursor> DatabaseSession::query(const std::string& sql) try {
    start();
    run("START TRANSACTION READ ONLY");
    watch_->require();
    return engine_->query(sql);
} catch (const data::Error&) {
    explain();
    throw;
}

void DatabaseSession::write(const std::vector<std::string>& statements) try {
    start();
    watch_->require();
    engine_->begin();
    for (const std::string& statement : statements)
        run(statement);
    watch_->require();
    engine_->commit();
} catch (const data::Error&) {
    explain();
    throw;
}

/// Says the first statement, which tells whether the session of an earlier call is still one: a
/// database that was restarted meanwhile is asked anew, and the caller does not notice.
void DatabaseSession::start() try { limitTime(); } catch (const data::Error& error) {
    if (!std::exchange(wasUsed_, false) || !isLost(error))
        throw;
    watch_.reset();
    engine_ = pool_.open(login_);
    watch_.emplace(*engine_, gone_, limit_);
    limitTime();
}

/// The database ends a statement by itself as well, should this program be gone by then. MariaDB
/// counts seconds, MySQL milliseconds under another name; what knows neither has the watch alone.
void DatabaseSession::limitTime() {
    const std::string seconds = std::to_string(limit_.count());
    try {
        run("SET SESSION max_statement_time = " + seconds);
        return;
    } catch (const data::Error& error) {
        if (error.Number() == data::number::Canceled || isLost(error))
            throw;
    }
    try {
        run("SET SESSION max_execution_time = " + seconds + "000");
    } catch (const data::Error& error) {
        if (error.Number() == data::number::Canceled)
            throw;
    }
}

void DatabaseSession::run(const std::string& statement) {
    watch_->require();
    engine_->execute(statement);
}

} // namespace quillet::headoffice
