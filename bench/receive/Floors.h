#pragma once

#include "db/VelkDBPro.h"

#include <filesystem>
#include <string>
#include <vector>

namespace quillet::bench {

/// What a receive's databases cannot avoid, by the shortest way that there is to them.

/// Executes a batch's statements in one transaction, each by sqlite3_exec, on a store file.
/// @return seconds, opening excluded.
double executeByFloor(const std::filesystem::path& store, const db::StatementArray& statements);

/// Runs queries and fetches every cell as text in the driver's own narrow characters, row by row
/// into bound buffers: of the ways that ODBC has, the quickest with MariaDB's driver.
/// @return seconds, connecting excluded.
double fetchByFloor(const std::string& connectionString, const std::vector<std::string>& queries);

} // namespace quillet::bench
