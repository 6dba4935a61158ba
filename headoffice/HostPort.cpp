#include "headoffice/HostPort.h"

#include <boost/asio/ip/address.hpp>

#include <algorithm>
#include <charconv>
#include <cstddef>

namespace quillet::headoffice {

namespace {

bool isHostCharacter(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || c == '-' || c == '.' || c == '_';
}

} // namespace

std::optional<HostPort> HostPort::parse(std::string_view text,
                                        std::optional<std::uint16_t> defaultPort) {
    HostPort result;
    std::size_t end = text.find(':');
    if (text.starts_with('[')) {
        end = text.find(']');
        if (end == std::string_view::npos)
            return std::nullopt;
        result.host = text.substr(1, end - 1);
        boost::system::error_code error;
        boost::asio::ip::make_address_v6(result.host, error);
        if (error)
            return std::nullopt;
        text.remove_prefix(end + 1);
    } else {
        result.host = text.substr(0, end);
        for (char& c : result.host)
            c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
        if (result.host.empty() ||
            !std::all_of(result.host.begin(), result.host.end(), isHostCharacter))
            return std::nullopt;
        text.remove_prefix(std::min(end, text.size()));
    }
    if (text.empty()) {
        if (!defaultPort)
            return std::nullopt;
        result.port = *defaultPort;
        return result;
    }
    const auto [stop, error] =
        std::from_chars(text.data() + 1, text.data() + text.size(), result.port);
    if (text.front() != ':' || error != std::errc() || stop != text.data() + text.size())
        return std::nullopt;
    return result;
}

std::string HostPort::text() const {
    const bool needsBrackets = host.find(':') != std::string::npos;
    return (needsBrackets ? '[' + host + ']' : host) + ':' + std::to_string(port);
}

bool HostPort::isLoopback() const {
    boost::system::error_code error;
    const auto address = boost::asio::ip::make_address(host, error);
    return error ? host == "localhost" : address.is_loopback();
}

} // namespace quillet::headoffice
