#include "data/Error.h"
#include "db/odbc/OdbcEngine.h"
#include "headoffice/database/OpenDatabase.h"

#include <string_view>

namespace quillet::headoffice {

namespace {

/// Bits of OPTION that ask the drivers not to keep a whole result before they deliver its first
/// row: no cache of results, forward-only cursors. MariaDB's heeds them from version 3.1.17 on.
///
/// Source: the option tables of the MySQL Connector/ODBC Developer Guide ("Connector/ODBC
/// Connection Parameters") and the release notes of MariaDB Connector/ODBC 3.1.17.
constexpr std::uint32_t RowByRow = 1048576 | 2097152;

/// A value in braces. Drivers disagree about a brace inside.
std::string braced(std::string_view value) {
    if (value.find_first_of("{}") != std::string_view::npos)
        throw data::providerError("08004", "A name or password with a brace is not served here.");
    return '{' + std::string(value) + '}';
}

} // namespace

std::unique_ptr<db::Engine> openDatabase(const DatabaseLogin& login, const std::string& driver) {
    return std::make_unique<db::OdbcEngine>(
        "DRIVER=" + braced(driver) + ";SERVER=" + login.database.host +
        ";PORT=" + std::to_string(login.database.port) +
        ";DATABASE=" + braced(login.database.name) + ";UID=" + braced(login.user) +
        ";PWD=" + braced(login.password) + ";OPTION=" + std::to_string(login.option | RowByRow));
}

const char* databaseLibrary() {
    return "ODBC";
}

} // namespace quillet::headoffice
