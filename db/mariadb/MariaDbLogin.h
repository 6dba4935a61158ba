#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace quillet::db {

/// Where a MySQL or MariaDB server is, and as whom to use it.
struct MariaDbLogin {
    std::string host; ///< a name or an address; always reached by TCP, "localhost" too
    std::uint16_t port = 3306;
    std::string database; ///< empty: none is chosen
    std::string user;
    std::string password;

    /// BIGINT columns are INT columns, for clients that know no 64-bit numbers (bit 16384 of
    /// MySQL's ODBC drivers; MariaDB's ignores it, observed with 3.1.15). A number that does not
    /// fit then fails its row.
    bool bigintAsInt = false;

    /// An UPDATE counts the rows it found, not those it changed (bit 2).
    bool foundRows = false;

    std::chrono::seconds connectTimeout{10}; ///< until the server has let the user in
    std::chrono::seconds readTimeout{600};   ///< between two pieces of an answer; 0: none
    std::chrono::seconds writeTimeout{60};   ///< 0: none
};

} // namespace quillet::db
