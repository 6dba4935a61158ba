#pragma once

// Internal to the server: it brings Boost with it.

#include <boost/asio/ip/tcp.hpp>

#include <string>

namespace quillet::rds {

/// Where a connection comes from.
struct ClientAddress {
    explicit ClientAddress(const boost::asio::ip::tcp::endpoint& endpoint);

    std::string text; ///< address and port, for people
    std::string host; ///< the address alone
    /// Whom the connection counts for: an IPv4 address, or the first half of an IPv6 one, since a
    /// host with IPv6 has a whole network's worth of addresses.
    std::string client;
};

} // namespace quillet::rds
