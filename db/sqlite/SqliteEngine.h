#pragma once

#include "db/Engine.h"
#include "db/TransactionState.h"

#include <chrono>
#include <filesystem>
#include <memory>
#include <string>

namespace quillet::db {

/// The embedded store: one SQLite file, its statements written for Access.
///
/// Errors carry SQLite's own message and the SQLSTATE that ODBC has for the case: 23000 for a
/// constraint, 42S02 for a table and 07002 for a column that is not there, 42000 for other faults
/// of a statement, 22018 for operands that do not fit, HY000 for everything else. A statement with
/// parameters is 07002, since nothing could ever be bound to them.
class SqliteEngine final : public Engine {
public:
    /// How long an operation waits for a lock that another program holds on the file.
    static constexpr std::chrono::milliseconds LockPatience{30'000};

    /// How long a commit waits for others to end their reading. It is shorter: as long as it waits,
    /// nobody can begin to read.
    static constexpr std::chrono::milliseconds CommitPatience{5'000};

    /// Opens an existing database; it never creates one.
    /// @throws Error 08001 whose description names the file and what is wrong with it.
    explicit SqliteEngine(const std::filesystem::path& file);
    ~SqliteEngine() override;

    void execute(const std::string& statement) override;

    /// Steps to the first row at once. A statement without a result runs and gives a cursor
    /// without columns.
    std::unique_ptr<data::Cursor> query(const std::string& source) override;

    /// Reads that column alone, from an index where one has it: of wide rows a fraction.
    std::unique_ptr<data::Cursor> queryColumn(const std::string& source,
                                              const std::string& column) override;

    void setWaitHandler(WaitHandler* handler) override;

    bool keepsTransactionsWhole() const noexcept override { return true; }

    /// Takes the write lock at once, so that no later statement can fail for want of it.
    void begin() override;
    void commit() override;

    /// Does nothing more when the database has already rolled back by itself (a full disk, say).
    void rollback() override;

private:
    struct Database;

    std::unique_ptr<Database> database_;
    TransactionState transaction_;
};

} // namespace quillet::db
