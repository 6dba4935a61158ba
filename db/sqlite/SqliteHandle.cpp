#include "db/sqlite/SqliteHandle.h"

#include <string_view>

namespace quillet::db {

namespace {

const char* sqlStateOf(int code, std::string_view message) {
    switch (code) {
    case SQLITE_CONSTRAINT:
        return "23000";
    case SQLITE_MISMATCH:
        return "22018";
    case SQLITE_ERROR:
        // SQLite has one code for all of these; the message alone tells them apart.
        if (message.starts_with("no such table"))
            return "42S02";
        if (message.starts_with("no such column"))
            return "07002";
        return "42000";
    default:
        return "HY000";
    }
}

} // namespace

Error sqliteError(sqlite3* database) {
    const int code = sqlite3_errcode(database) & 0xFF;
    const char* const message = sqlite3_errmsg(database);
    return providerError(sqlStateOf(code, message), message);
}

bool stepSqlite(sqlite3_stmt* statement) {
    const int result = sqlite3_step(statement);
    if (result != SQLITE_ROW && result != SQLITE_DONE)
        throw sqliteError(sqlite3_db_handle(statement));
    return result == SQLITE_ROW;
}

} // namespace quillet::db
