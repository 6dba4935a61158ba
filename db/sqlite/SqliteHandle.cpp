#include "db/sqlite/SqliteHandle.h"

#include "files/Paths.h"

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

/// Nobody asks how much memory SQLite takes, and counting it takes a lock for each allocation: a
/// seventh of a statement's time (sqlite.org/c3ref/c_config_covering_index_scan.html, MEMSTATUS).
/// Has to come before the library's first use; where it does not, it changes nothing.
void stopCountingMemory() {
    [[maybe_unused]] static const int once = sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0);
}

} // namespace

SqliteDatabase openSqlite(const std::filesystem::path& file, int flags, int& result) {
    stopCountingMemory();
    sqlite3* opened = nullptr;
    result =
        sqlite3_open_v2(files::textOf(file).c_str(), &opened, flags | SQLITE_OPEN_NOMUTEX, nullptr);
    return SqliteDatabase(opened);
}

data::Error sqliteError(sqlite3* database) {
    const int code = sqlite3_errcode(database) & 0xFF;
    const char* const message = sqlite3_errmsg(database);
    return data::providerError(sqlStateOf(code, message), message);
}

bool stepSqlite(sqlite3_stmt* statement) {
    const int result = sqlite3_step(statement);
    if (result != SQLITE_ROW && result != SQLITE_DONE)
        throw sqliteError(sqlite3_db_handle(statement));
    return result == SQLITE_ROW;
}

} // namespace quillet::db
