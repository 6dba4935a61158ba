#pragma once

#include "db/Engine.h"
#include "db/TransactionState.h"

#include <memory>
#include <string>
#include <string_view>

namespace quillet::db {

/// Any database behind an ODBC driver. Texts cross as UTF-16. Errors carry every diagnostic record
/// of the failed call, the driver's messages unchanged; a statement with a NUL character is refused
/// here with 42000, since drivers would run the part in front of it.
///
/// A driver without Unicode calls gets its statements in the driver manager's ANSI code page;
/// letters outside that are the driver manager's to lose. Values are not affected.
class OdbcEngine final : public Engine {
public:
    /// @param connectionString as for SQLDriverConnect; no dialog is ever shown.
    explicit OdbcEngine(const std::string& connectionString);
    ~OdbcEngine() override;

    /// True when the driver manager knows a driver of this name, whatever its letter case. False
    /// also when there is no driver manager to ask.
    static bool knowsDriver(std::string_view name);

    void execute(const std::string& statement) override;

    /// A statement without a result runs and gives a cursor without columns.
    std::unique_ptr<data::Cursor> query(const std::string& source) override;

    void begin() override;
    void commit() override;
    void rollback() override;

private:
    struct Session;

    void endTransaction(bool commit);

    std::unique_ptr<Session> session_;
    TransactionState transaction_;
};

} // namespace quillet::db
