#include "db/odbc/OdbcEngine.h"

#include "data/AsciiText.h"
#include "db/odbc/OdbcCursor.h"
#include "db/odbc/OdbcHandle.h"

#include <array>
#include <optional>

namespace quillet::db {

struct OdbcEngine::Session {
    explicit Session(const std::string& connectionString)
        : connection(SQL_HANDLE_DBC, SQL_HANDLE_ENV, environment.get()) {
        OdbcText text(connectionString);
        connection.check(SQLDriverConnectW(connection.get(), nullptr, text.data(), SQL_NTS, nullptr,
                                           0, nullptr, SQL_DRIVER_NOPROMPT));
    }

    ~Session() {
        statement.reset();
        // Disconnecting fails while a transaction is open; rolling back none does no harm.
        SQLEndTran(SQL_HANDLE_DBC, connection.get(), SQL_ROLLBACK);
        SQLDisconnect(connection.get());
    }

    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    void setAutocommit(bool on) const {
        const auto value = on ? SQL_AUTOCOMMIT_ON : SQL_AUTOCOMMIT_OFF;
        connection.check(SQLSetConnectAttrW(connection.get(), SQL_ATTR_AUTOCOMMIT,
                                            odbcAttribute(value), SQL_IS_UINTEGER));
    }

    OdbcTexts texts() {
        if (!texts_)
            texts_ = deliversUtf8(connection.get()) ? OdbcTexts::Utf8 : OdbcTexts::Wide;
        return *texts_;
    }

    OdbcEnvironment environment;
    OdbcHandle connection;
    std::optional<OdbcHandle> statement; ///< kept for all statements without a result

private:
    std::optional<OdbcTexts> texts_; ///< known after the first query
};

OdbcEngine::OdbcEngine(const std::string& connectionString)
    : session_(std::make_unique<Session>(connectionString)) {}

OdbcEngine::~OdbcEngine() = default;

bool OdbcEngine::knowsDriver(std::string_view name) try {
    const OdbcEnvironment environment;
    std::array<SQLWCHAR, 512> description{};
    SQLSMALLINT length = 0;
    SQLUSMALLINT direction = SQL_FETCH_FIRST;
    while (SQL_SUCCEEDED(SQLDriversW(environment.get(), direction, description.data(),
                                     static_cast<SQLSMALLINT>(description.size()), &length, nullptr,
                                     0, nullptr))) {
        if (data::equalIgnoringCase(utf8OfOdbc(description.data(), description.size(), length),
                                    name))
            return true;
        direction = SQL_FETCH_NEXT;
    }
    return false;
} catch (const data::Error&) {
    return false;
}

void OdbcEngine::execute(const std::string& statement) {
    if (!session_->statement)
        session_->statement.emplace(SQL_HANDLE_STMT, SQL_HANDLE_DBC, session_->connection.get());
    const OdbcHandle& handle = *session_->statement;
    executeOdbc(handle, statement);
    SQLFreeStmt(handle.get(), SQL_CLOSE);
}

std::unique_ptr<data::Cursor> OdbcEngine::query(const std::string& source) {
    return std::make_unique<OdbcCursor>(session_->connection.get(), source, session_->texts());
}

void OdbcEngine::begin() {
    transaction_.requireNone();
    session_->setAutocommit(false);
    transaction_.begun();
}

void OdbcEngine::commit() {
    endTransaction(true);
}

void OdbcEngine::rollback() {
    endTransaction(false);
}

void OdbcEngine::endTransaction(bool commit) {
    transaction_.requireActive();
    const OdbcHandle& connection = session_->connection;
    connection.check(
        SQLEndTran(SQL_HANDLE_DBC, connection.get(), commit ? SQL_COMMIT : SQL_ROLLBACK));
    transaction_.ended();
    session_->setAutocommit(true);
}

} // namespace quillet::db
