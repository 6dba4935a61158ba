#pragma once

#include "db/Engine.h"
#include "db/TransactionState.h"
#include "db/mariadb/MariaDbLogin.h"

#include <memory>
#include <string>

namespace quillet::db {

class MariaDbSession;

/// A MySQL or MariaDB server, through MariaDB's own client library. Against the same server's ODBC
/// driver it has three advantages: a result is read row by row, a statement can be ended, and a
/// session can be handed on. Fields and values are the same.
///
/// One thread at a time uses an engine, but for cancel(). While a cursor is open, its engine can do
/// nothing else. Errors have one record with the database's words and SQLSTATE; the client
/// library's own become neutral sentences that name no host, file or account. A statement with a
/// NUL character is refused with 42000.
class MariaDbEngine final : public Engine {
public:
    /// Connects.
    /// @throws Error 28000 where the log-in is refused, 08001 or 08004 where there is no server or
    ///         no place on it, 42000 without such a database.
    explicit MariaDbEngine(const MariaDbLogin& login);
    ~MariaDbEngine() override;

    void execute(const std::string& statement) override;

    /// A statement without a result runs and gives a cursor without columns.
    std::unique_ptr<data::Cursor> query(const std::string& source) override;

    void begin() override;
    void commit() override;
    void rollback() override;

    /// Ends the statement that runs, or whose rows are being read, by a second connection, which
    /// takes milliseconds; a server that cannot be told so within some seconds has the connection
    /// cut. Where nothing runs, nothing happens; the statement after is not hit. The engine must
    /// live until this has returned, and its next statement waits for that.
    void cancel() noexcept override;

    /// Logs in anew on the same connection: no variable, temporary table, transaction, named lock,
    /// prepared statement, role or other database of before is left.
    /// @return false also while a cursor is open, after the connection was lost, and when cancelled
    ///         meanwhile; but for an open cursor, the connection is of no use then.
    bool reset() override;

    /// Whether the connection was lost, as far as is known without asking.
    bool isLost() const noexcept;

    /// As the server gives it, like "10.11.6-MariaDB".
    std::string serverVersion() const;

private:
    void endTransaction(const char* statement);

    const std::unique_ptr<MariaDbSession> session_;
    TransactionState transaction_;
};

} // namespace quillet::db
