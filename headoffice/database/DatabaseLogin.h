#pragma once

#include "headoffice/database/DatabaseName.h"

#include <compare>
#include <cstdint>
#include <string>

namespace quillet::headoffice {

/// All that a caller decides about its connection to a database.
struct DatabaseLogin {
    /// Bits of ODBC's OPTION that change what a counter sees.
    static constexpr std::uint32_t FoundRows = 2;
    static constexpr std::uint32_t BigintAsInt = 16384;

    DatabaseName database;
    std::string user;
    std::string password;
    std::uint32_t option = 0; ///< none but the bits above

    auto operator<=>(const DatabaseLogin&) const = default;
};

} // namespace quillet::headoffice
