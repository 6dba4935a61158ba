#pragma once

#include <compare>
#include <cstdint>
#include <string>

namespace quillet::headoffice {

/// A database on a MySQL or MariaDB server, as `HOST[:PORT]/NAME`; an IPv6 address is in brackets.
struct DatabaseName {
    static constexpr std::uint16_t DefaultPort = 3306;

    /// @throws data::Error 3001 with a sentence for the administrator.
    static DatabaseName parse(const std::string& text);

    std::string host; ///< in lower case
    std::uint16_t port = DefaultPort;
    std::string name; ///< letter case counts

    /// With the port, always.
    std::string text() const;

    auto operator<=>(const DatabaseName&) const = default;
};

} // namespace quillet::headoffice
