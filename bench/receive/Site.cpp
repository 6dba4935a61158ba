#include "bench/receive/Site.h"

#include "app/ConnectionStrings.h"

namespace quillet::bench {

std::string Site::connectionString(const std::string& database) const {
    return app::serverConnectionString(databaseServer, database, databaseUser);
}

} // namespace quillet::bench
