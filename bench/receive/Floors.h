#pragma once

#include "db/odbc/OdbcHandle.h"
#include "db/sqlite/SqliteHandle.h"

#include <filesystem>
#include <string>

namespace quillet::bench {

// What a receive's databases cannot avoid, by the shortest way that there is to them.

/// F1: a batch's statements in one transaction on a store file, each by sqlite3_exec. Piece by
/// piece, so that it can take turns with what it is compared with.
class ExecuteFloor {
public:
    /// Opens the file as anyone would, and begins the transaction. What the counter's program has
    /// set for the whole library holds here as well.
    explicit ExecuteFloor(const std::filesystem::path& store);

    void execute(const std::string& statement);
    void commit() { execute("COMMIT"); }

private:
    db::SqliteDatabase database_;
};

/// F2: a query's rows, every cell as text in the driver's own narrow characters, row by row into
/// bound buffers: of the ways that ODBC has, the quickest with MariaDB's driver.
class FetchFloor {
public:
    /// Connects, as the head office's server does.
    explicit FetchFloor(const std::string& connectionString);
    ~FetchFloor();
    FetchFloor(const FetchFloor&) = delete;
    FetchFloor& operator=(const FetchFloor&) = delete;

    void fetch(const std::string& query);

private:
    db::OdbcEnvironment environment_;
    db::OdbcHandle connection_;
};

} // namespace quillet::bench
