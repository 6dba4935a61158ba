#include "rds/http/AddressList.h"

#include "data/Error.h"

#include <boost/asio/ip/address.hpp>

#include <algorithm>
#include <charconv>
#include <optional>
#include <string>

namespace quillet::rds {

namespace {

namespace ip = boost::asio::ip;
using Bytes = std::array<std::uint8_t, 16>;

[[noreturn]] void refuse(std::string_view network, const std::string& why) {
    throw data::Error(data::number::InvalidArgument,
                      "'" + std::string(network) + "' is no network: " + why + '.');
}

std::optional<ip::address> addressOf(std::string_view text) {
    boost::system::error_code error;
    const auto address = ip::make_address(std::string(text), error);
    if (error)
        return std::nullopt;
    if (address.is_v6() && address.to_v6().is_v4_mapped())
        return ip::make_address_v4(ip::v4_mapped, address.to_v6());
    return address;
}

Bytes bytesOf(const ip::address& address) {
    Bytes bytes{};
    if (address.is_v4())
        std::ranges::copy(address.to_v4().to_bytes(), bytes.begin());
    else
        std::ranges::copy(address.to_v6().to_bytes(), bytes.begin());
    return bytes;
}

/// The first bits of an address, with zeros behind them.
Bytes prefixOf(Bytes bytes, unsigned bits) {
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const unsigned kept = std::min(8U, bits - std::min(bits, static_cast<unsigned>(8 * i)));
        bytes[i] = static_cast<std::uint8_t>(bytes[i] & (0xFF00U >> kept));
    }
    return bytes;
}

std::string textOf(const Bytes& bytes, bool v4) {
    if (v4)
        return ip::address_v4({bytes[0], bytes[1], bytes[2], bytes[3]}).to_string();
    return ip::address_v6(bytes).to_string();
}

} // namespace

AddressList::Network AddressList::networkOf(std::string_view text) {
    const std::size_t slash = text.find('/');
    const std::string_view host = text.substr(0, slash);
    const auto address = addressOf(host);
    if (!address || host.find('%') != std::string_view::npos)
        refuse(text, "it must be an address such as 192.168.1.7, or one with a length such as "
                     "192.168.1.0/24");
    Network network{address->is_v4(), bytesOf(*address), address->is_v4() ? 32U : 128U};
    if (slash == std::string_view::npos)
        return network;

    // The length of an IPv4 network in its IPv6 form counts the 96 bits in front as well.
    const bool mapped = network.v4 && host.find(':') != std::string_view::npos;
    const unsigned from = mapped ? 96 : 0;
    const unsigned to = from + network.bits;
    const std::string_view length = text.substr(slash + 1);
    unsigned bits = 0;
    const auto [end, error] = std::from_chars(length.data(), length.data() + length.size(), bits);
    if (error != std::errc() || end != length.data() + length.size() || bits < from || bits > to)
        refuse(text, "the length must be a number from " + std::to_string(from) + " to " +
                         std::to_string(to));
    network.bits = bits - from;
    const Bytes prefix = prefixOf(network.address, network.bits);
    if (prefix != network.address)
        refuse(text, "for the whole network write " + textOf(prefix, network.v4) + '/' +
                         std::to_string(network.bits) + ", for the one address " +
                         textOf(network.address, network.v4));
    return network;
}

AddressList AddressList::parse(std::string_view text) {
    AddressList list;
    for (;;) {
        text.remove_prefix(std::min(text.find_first_not_of(", \t"), text.size()));
        if (text.empty())
            break;
        const std::string_view network = text.substr(0, text.find_first_of(", \t"));
        list.networks_.push_back(networkOf(network));
        text.remove_prefix(network.size());
    }
    if (list.networks_.empty())
        throw data::Error(data::number::InvalidArgument, "The list of networks is empty.");
    return list;
}

AddressList AddressList::loopback() {
    return parse("127.0.0.0/8, ::1");
}

bool AddressList::contains(std::string_view address) const {
    const auto parsed = addressOf(address);
    if (!parsed)
        return false;
    const Bytes bytes = bytesOf(*parsed);
    return std::ranges::any_of(networks_, [&](const Network& network) {
        return network.v4 == parsed->is_v4() && prefixOf(bytes, network.bits) == network.address;
    });
}

} // namespace quillet::rds
