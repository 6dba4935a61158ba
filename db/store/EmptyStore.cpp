#include "db/store/EmptyStore.h"

#include "data/Error.h"
#include "db/sqlite/SqliteHandle.h"
#include "db/store/schema.h" // made from schema.sql by the build
#include "files/Paths.h"

namespace quillet::db {

void createEmptyStore(const std::filesystem::path& file) {
    if (std::filesystem::exists(file))
        throw data::Error(data::number::Unspecified,
                          "There is a file already: " + files::textOf(file));

    int result = SQLITE_OK;
    SqliteDatabase handle = openSqlite(file, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, result);
    const std::string script = "BEGIN;" + std::string(StoreSchema) + "COMMIT;";
    if (result != SQLITE_OK ||
        sqlite3_exec(handle.get(), script.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
        const std::string reason = sqlite3_errmsg(handle.get());
        handle.reset();
        std::error_code ignored;
        std::filesystem::remove(file, ignored);
        throw data::Error(data::number::Unspecified,
                          "The store " + files::textOf(file) + " cannot be created: " + reason);
    }
}

} // namespace quillet::db
