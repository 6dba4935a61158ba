#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quillet::headoffice {

/// `HOST:PORT`; an IPv6 address is in brackets.
struct HostPort {
    std::string host; ///< in lower case, without brackets
    std::uint16_t port = 0;

    /// @param defaultPort for a text without one; without it there must be one.
    /// @return nothing for any other text.
    static std::optional<HostPort> parse(std::string_view text,
                                         std::optional<std::uint16_t> defaultPort = {});

    std::string text() const;

    /// Whether the host is this machine: 127.0.0.0/8, ::1, or localhost.
    bool isLoopback() const;
};

} // namespace quillet::headoffice
