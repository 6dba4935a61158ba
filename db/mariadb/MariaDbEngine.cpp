#include "db/mariadb/MariaDbEngine.h"

#include "data/Error.h"
#include "db/mariadb/MariaDbCursor.h"
#include "db/mariadb/MariaDbSession.h"

namespace quillet::db {

namespace {

void requireNoNul(const std::string& statement) {
    if (statement.find('\0') != std::string::npos)
        throw data::providerError("42000", "Syntax error: the statement holds a NUL character.");
}

} // namespace

MariaDbEngine::MariaDbEngine(const MariaDbLogin& login)
    : session_(std::make_unique<MariaDbSession>(login)) {}

MariaDbEngine::~MariaDbEngine() = default;

void MariaDbEngine::execute(const std::string& statement) {
    requireNoNul(statement);
    session_->run(statement);
}

std::unique_ptr<data::Cursor> MariaDbEngine::query(const std::string& source) {
    requireNoNul(source);
    return std::make_unique<MariaDbCursor>(*session_, source);
}

void MariaDbEngine::begin() {
    transaction_.requireNone();
    // Unlike START TRANSACTION this also holds for what comes after a statement that commits.
    session_->run("SET autocommit = 0");
    transaction_.begun();
}

void MariaDbEngine::commit() {
    endTransaction("COMMIT");
}

void MariaDbEngine::rollback() {
    endTransaction("ROLLBACK");
}

void MariaDbEngine::endTransaction(const char* statement) {
    transaction_.requireActive();
    session_->run(statement);
    transaction_.ended();
    session_->run("SET autocommit = 1");
}

void MariaDbEngine::cancel() noexcept {
    session_->cancel();
}

bool MariaDbEngine::reset() {
    if (!session_->reset())
        return false;
    transaction_.ended();
    return true;
}

bool MariaDbEngine::isLost() const noexcept {
    return session_->isLost();
}

std::string MariaDbEngine::serverVersion() const {
    return mysql_get_server_info(session_->get());
}

} // namespace quillet::db
