#include "rds/http/ClientAddress.h"

#include <algorithm>
#include <cstdint>
#include <sstream>

namespace quillet::rds {

namespace {

namespace ip = boost::asio::ip;

std::string textOf(const ip::tcp::endpoint& endpoint) {
    std::ostringstream text;
    text << endpoint;
    return text.str();
}

std::string clientOf(const ip::address& address) {
    if (address.is_v4())
        return address.to_string();
    if (address.to_v6().is_v4_mapped())
        return ip::make_address_v4(ip::v4_mapped, address.to_v6()).to_string();
    auto bytes = address.to_v6().to_bytes();
    std::fill(bytes.begin() + bytes.size() / 2, bytes.end(), std::uint8_t{0});
    return ip::address_v6(bytes).to_string();
}

} // namespace

ClientAddress::ClientAddress(const ip::tcp::endpoint& endpoint)
    : text(textOf(endpoint)), host(endpoint.address().to_string()),
      client(clientOf(endpoint.address())) {}

} // namespace quillet::rds
