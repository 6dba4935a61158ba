#pragma once

#include <string>

namespace quillet::headoffice {

/// A connection string that asks the MySQL and MariaDB drivers not to keep a whole result in memory
/// before they deliver its first row: bits 1048576 (do not cache results) and 2097152 (forward-only
/// cursors) of their OPTION, beside those that are set already. MariaDB's heeds it from version
/// 3.1.17 on. While a result is being read, its connection can do nothing else.
///
/// Source: the option tables of the MySQL Connector/ODBC Developer Guide ("Connector/ODBC
/// Connection Parameters") and the release notes of MariaDB Connector/ODBC 3.1.17.
/// @return the string as it is for any other driver, and for an OPTION that is no number.
std::string readingRowByRow(const std::string& connectionString);

} // namespace quillet::headoffice
