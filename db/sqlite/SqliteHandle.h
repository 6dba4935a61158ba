#pragma once

#include "data/Error.h"

#include <sqlite3.h>

#include <filesystem>
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

/// Opens a database file. Its connection has no lock: it is for one thread at a time.
/// @param flags SQLITE_OPEN_READWRITE, perhaps with SQLITE_OPEN_CREATE.
/// @return the handle, which has the reason of a failure; null when there is no memory for one.
SqliteDatabase openSqlite(const std::filesystem::path& file, int flags, int& result);

/// The latest error of a database, its message unchanged.
data::Error sqliteError(sqlite3* database);

/// Steps a statement.
/// @return true on a row, false at the end.
/// @throws Error with the database's message.
bool stepSqlite(sqlite3_stmt* statement);

} // namespace quillet::db
