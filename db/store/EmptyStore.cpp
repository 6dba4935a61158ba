#include "db/store/EmptyStore.h"

#include "db/Error.h"
#include "db/Paths.h"
#include "db/store/schema.h" // made from schema.sql by the build

#include <sqlite3.h>

#include <memory>

namespace quillet::db {

namespace {

struct Closer {
    void operator()(sqlite3* handle) const noexcept { sqlite3_close(handle); }
};

} // namespace

void createEmptyStore(const std::filesystem::path& file) {
    if (std::filesystem::exists(file))
        throw Error(number::Unspecified, "There is a file already: " + textOf(file));

    sqlite3* opened = nullptr;
    const int openResult = sqlite3_open_v2(textOf(file).c_str(), &opened,
                                           SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr);
    std::unique_ptr<sqlite3, Closer> handle(opened);
    const std::string script = "BEGIN;" + std::string(StoreSchema) + "COMMIT;";
    if (openResult != SQLITE_OK ||
        sqlite3_exec(handle.get(), script.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
        const std::string reason = sqlite3_errmsg(handle.get());
        handle.reset();
        std::error_code ignored;
        std::filesystem::remove(file, ignored);
        throw Error(number::Unspecified,
                    "The store " + textOf(file) + " cannot be created: " + reason);
    }
}

} // namespace quillet::db
