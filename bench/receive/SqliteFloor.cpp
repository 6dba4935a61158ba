#include "bench/receive/Floors.h"
#include "files/Paths.h"

#include <stdexcept>

namespace quillet::bench {

namespace {

db::SqliteDatabase open(const std::filesystem::path& store) {
    sqlite3* opened = nullptr;
    const int result =
        sqlite3_open_v2(files::textOf(store).c_str(), &opened, SQLITE_OPEN_READWRITE, nullptr);
    db::SqliteDatabase database(opened);
    if (result != SQLITE_OK)
        throw std::runtime_error("the floor's store cannot be opened");
    return database;
}

} // namespace

ExecuteFloor::ExecuteFloor(const std::filesystem::path& store) : database_(open(store)) {
    execute("BEGIN IMMEDIATE");
}

void ExecuteFloor::execute(const std::string& statement) {
    if (sqlite3_exec(database_.get(), statement.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK)
        throw std::runtime_error(std::string(sqlite3_errmsg(database_.get())) + ": " + statement);
}

} // namespace quillet::bench
