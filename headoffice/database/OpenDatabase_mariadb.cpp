#include "db/mariadb/MariaDbEngine.h"
#include "headoffice/database/OpenDatabase.h"

namespace quillet::headoffice {

std::unique_ptr<db::Engine> openDatabase(const DatabaseLogin& login,
                                         const std::string& /*driver*/) {
    db::MariaDbLogin to;
    to.host = login.database.host;
    to.port = login.database.port;
    to.database = login.database.name;
    to.user = login.user;
    to.password = login.password;
    // BIGINT stays one whatever the option says, as with MariaDB's ODBC driver: a number that is
    // too large for INT must not fail its row.
    to.foundRows = (login.option & DatabaseLogin::FoundRows) != 0;
    return std::make_unique<db::MariaDbEngine>(to);
}

const char* databaseLibrary() {
    return "libmariadb";
}

} // namespace quillet::headoffice
