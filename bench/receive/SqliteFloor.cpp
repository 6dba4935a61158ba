#include "bench/receive/Floors.h"
#include "bench/receive/Stopwatch.h"
#include "db/Paths.h"

#include <sqlite3.h>

#include <memory>
#include <stdexcept>

namespace quillet::bench {

double executeByFloor(const std::filesystem::path& store, const db::StatementArray& statements) {
    sqlite3* opened = nullptr;
    sqlite3_open_v2(db::textOf(store).c_str(), &opened, SQLITE_OPEN_READWRITE, nullptr);
    const std::unique_ptr<sqlite3, decltype(&sqlite3_close)> database(opened, sqlite3_close);
    const auto execute = [opened](const std::string& statement) {
        if (sqlite3_exec(opened, statement.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK)
            throw std::runtime_error(std::string(sqlite3_errmsg(opened)) + ": " + statement);
    };
    const Stopwatch stopwatch;
    execute("BEGIN IMMEDIATE");
    for (std::size_t i = 1; i < statements.size(); ++i)
        execute(statements[i]);
    execute("COMMIT");
    return stopwatch.seconds();
}

} // namespace quillet::bench
