#pragma once

#include <string>

namespace quillet::app {

/// The store database's file.
inline constexpr const char* StoreFileName = "food.MDB";

/// The store database `food.MDB` in a folder. Values go in as they stand.
std::string storeConnectionString(const std::string& folder);

/// The head office's database, as its data object opens it. Values go in as they stand, so a
/// server may be given as `127.0.0.1;PORT=33061`.
std::string serverConnectionString(const std::string& server, const std::string& database,
                                   const std::string& user);

} // namespace quillet::app
