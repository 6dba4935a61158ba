#pragma once

#include "db/Engine.h"
#include "headoffice/database/DatabaseLogin.h"

#include <memory>
#include <string>

namespace quillet::headoffice {

/// Opens a database: through MariaDB's client library where the program is built with it, which
/// reads a result row by row with every version, or else through the ODBC driver.
/// @param driver of ODBC.
/// @throws data::Error
std::unique_ptr<db::Engine> openDatabase(const DatabaseLogin& login, const std::string& driver);

/// How openDatabase() does it, for people: "libmariadb" or "ODBC".
const char* databaseLibrary();

} // namespace quillet::headoffice
