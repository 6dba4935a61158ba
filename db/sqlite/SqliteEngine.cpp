#include "db/sqlite/SqliteEngine.h"

#include "data/Error.h"
#include "db/sqlite/AccessDialect.h"
#include "db/sqlite/AccessFunctions.h"
#include "db/sqlite/SqliteCursor.h"
#include "db/sqlite/SqliteHandle.h"
#include "db/sqlite/SqliteWaits.h"
#include "files/Paths.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <limits>
#include <string_view>
#include <system_error>
#include <utility>

namespace quillet::db {

namespace {

/// @throws Error unless the file looks like an SQLite database. SQLite by itself would take an
///         empty file for a new database and say little about the others.
void requireStore(const std::filesystem::path& file) {
    const auto refuse = [&file](const std::string& why) {
        throw data::providerError("08001",
                                  "The store database '" + files::textOf(file) + "' " + why);
    };
    std::error_code ignored;
    if (!std::filesystem::exists(file, ignored))
        refuse("does not exist.");
    if (std::filesystem::is_directory(file, ignored))
        refuse("is a folder, not a database.");
    std::ifstream stream(file, std::ios::binary);
    std::array<char, 20> head{};
    stream.read(head.data(), head.size());
    if (!stream.is_open() || stream.bad())
        refuse("cannot be read.");
    const std::string_view read(head.data(), static_cast<std::size_t>(stream.gcount()));
    if (read.empty())
        refuse("is empty.");
    const std::string_view accessName = read.substr(std::min<std::size_t>(4, read.size()));
    if (accessName.starts_with("Standard Jet DB") || accessName.starts_with("Standard ACE DB"))
        refuse("is a Microsoft Access database, and this machine has no Access ODBC driver to open "
               "it with.");
    if (!read.starts_with(std::string_view("SQLite format 3\0", 16)))
        refuse("is not a database.");
}

SqliteDatabase openStore(const std::filesystem::path& file) {
    requireStore(file);
    int result = SQLITE_OK;
    SqliteDatabase database = openSqlite(file, SQLITE_OPEN_READWRITE, result);
    sqlite3* const opened = database.get();
    if (result == SQLITE_OK)
        result =
            sqlite3_exec(opened, "SELECT 1 FROM sqlite_schema", nullptr, nullptr, nullptr) & 0xFF;
    // A lock of the POS program is no reason to refuse the file; a statement will wait for it.
    if (result != SQLITE_OK && result != SQLITE_BUSY)
        throw data::providerError("08001", "The store database '" + files::textOf(file) +
                                               "' cannot be opened: " +
                                               (opened ? sqlite3_errmsg(opened) : "out of memory"));
    // What a transaction changes stays in memory until its commit: written out before, it would
    // keep everybody else from reading until then (sqlite.org/pragma.html#pragma_cache_spill).
    sqlite3_exec(opened, "PRAGMA cache_spill=OFF", nullptr, nullptr, nullptr);
    // A commit is the removal of the journal. It is on the disk before we go by it and take back
    // the note of what was owed (sqlite.org/pragma.html#pragma_synchronous).
    sqlite3_exec(opened, "PRAGMA synchronous=EXTRA", nullptr, nullptr, nullptr);
    addAccessFunctions(opened);
    return database;
}

} // namespace

struct SqliteEngine::Database {
    explicit Database(const std::filesystem::path& file)
        : handle(openStore(file)), waits(handle.get()) {}

    SqliteStatement prepare(const std::string& statement) {
        const std::string& sql = translateAccessSql(statement, translated);
        if (sql.size() >= static_cast<std::size_t>(std::numeric_limits<int>::max()))
            throw data::providerError("42000", "The statement is too long.");
        sqlite3_stmt* prepared = nullptr;
        const char* rest = nullptr;
        // With the terminating NUL counted in, SQLite need not copy the text.
        const int result = sqlite3_prepare_v2(handle.get(), sql.c_str(),
                                              static_cast<int>(sql.size() + 1), &prepared, &rest);
        SqliteStatement owner(prepared);
        if (result != SQLITE_OK)
            throw sqliteError(handle.get());
        if (std::string_view(rest).find_first_not_of(" \t\r\n\f") != std::string_view::npos)
            throw data::providerError("42000", "Characters found after end of SQL statement.");
        if (!owner)
            throw data::providerError("42000",
                                      "Invalid SQL statement; expected 'DELETE', 'INSERT', "
                                      "'PROCEDURE', 'SELECT', or 'UPDATE'.");
        if (const int parameters = sqlite3_bind_parameter_count(prepared); parameters != 0)
            throw data::providerError("07002", "Too few parameters. Expected " +
                                                   std::to_string(parameters) + ".");
        return owner;
    }

    void execute(const std::string& statement, std::chrono::milliseconds lockLimit) {
        const SqliteWaits::Operation operation(waits, lockLimit);
        const SqliteStatement prepared = prepare(statement);
        while (stepSqlite(prepared.get())) {
        }
    }

    SqliteDatabase handle;
    SqliteWaits waits;
    std::string translated;
};

SqliteEngine::SqliteEngine(const std::filesystem::path& file)
    : database_(std::make_unique<Database>(file)) {}

SqliteEngine::~SqliteEngine() = default;

void SqliteEngine::execute(const std::string& statement) {
    database_->execute(statement, LockPatience);
}

std::unique_ptr<data::Cursor> SqliteEngine::query(const std::string& source) {
    const SqliteWaits::Operation operation(database_->waits, LockPatience);
    return std::make_unique<SqliteCursor>(database_->prepare(source));
}

std::unique_ptr<data::Cursor> SqliteEngine::queryColumn(const std::string& source,
                                                        const std::string& column) {
    return query("SELECT [" + column + "] FROM (" + source + ")");
}

void SqliteEngine::setWaitHandler(WaitHandler* handler) {
    database_->waits.setHandler(handler);
}

void SqliteEngine::begin() {
    transaction_.requireNone();
    execute("BEGIN IMMEDIATE");
    transaction_.begun();
}

void SqliteEngine::commit() {
    transaction_.requireActive();
    database_->execute("COMMIT", CommitPatience);
    transaction_.ended();
}

void SqliteEngine::rollback() {
    transaction_.requireActive();
    if (sqlite3_get_autocommit(database_->handle.get()) == 0)
        execute("ROLLBACK");
    transaction_.ended();
}

} // namespace quillet::db
