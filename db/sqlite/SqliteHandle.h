#pragma once

#include "db/Error.h"

#include <sqlite3.h>

#include <memory>

namespace quillet::db {

struct SqliteDatabaseDeleter {
    void operator()(sqlite3* database) const noexcept { sqlite3_close_v2(database); }
};
struct SqliteStatementDeleter {
    void operator()(sqlite3_stmt* statement) const noexcept { sqlite3_finalize(statement); }
};

using SqliteDatabase = std::unique_ptr<sqlite3, SqliteDatabaseDeleter>;
using SqliteStatement = std::unique_ptr<sqlite3_stmt, SqliteStatementDeleter>;

/// The latest error of a database, its message unchanged.
Error sqliteError(sqlite3* database);

/// Steps a statement.
/// @return true on a row, false at the end.
/// @throws Error with the database's message.
bool stepSqlite(sqlite3_stmt* statement);

} // namespace quillet::db
