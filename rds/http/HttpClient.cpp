#include "rds/http/HttpClient.h"

#include "data/Error.h"
#include "rds/http/NetworkErrors.h"
#include "rds/http/TimedStream.h"

#include <boost/asio/connect.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/write.hpp>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <future>
#include <optional>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace quillet::rds {

namespace {

namespace asio = boost::asio;
namespace beast = boost::beast;
using asio::ip::tcp;
using boost::system::error_code;
using Clock = std::chrono::steady_clock;
using Endpoints = std::vector<tcp::endpoint>;

constexpr int MaxInterimReplies = 32;

struct ServerAddress {
    std::string host;
    std::uint16_t port = 80;
};

std::optional<std::uint16_t> portOf(std::string_view text) {
    std::uint16_t port = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), port);
    if (error != std::errc() || end != text.data() + text.size() || port == 0)
        return std::nullopt;
    return port;
}

/// "host", "host:port", "[v6]", "[v6]:port" or a bare IPv6 address.
std::optional<ServerAddress> addressOf(std::string_view server) {
    for (const char c : server) {
        if (static_cast<unsigned char>(c) <= ' ' || c == '/' || c == 0x7F)
            return std::nullopt;
    }
    std::string_view host = server;
    std::string_view port;
    if (server.starts_with('[')) {
        const std::size_t bracket = server.find(']');
        if (bracket == std::string_view::npos)
            return std::nullopt;
        host = server.substr(1, bracket - 1);
        port = server.substr(bracket + 1);
    } else if (const std::size_t colon = server.find(':');
               colon != std::string_view::npos && colon == server.rfind(':')) {
        host = server.substr(0, colon);
        port = server.substr(colon);
    }
    if (host.empty())
        return std::nullopt;
    ServerAddress address{std::string(host)};
    if (!port.empty()) {
        const auto number = port.front() == ':' ? portOf(port.substr(1)) : std::nullopt;
        if (!number)
            return std::nullopt;
        address.port = *number;
    }
    return address;
}

[[noreturn]] void throwEnded() {
    throw data::Error(data::number::Canceled, "The call was ended.");
}

/// All addresses of a host. The system's look-up cannot be interrupted: one that takes too long
/// is left to end on its own.
std::pair<error_code, Endpoints> lookUp(const ServerAddress& server, Clock::duration timeout,
                                        const HttpClient::WhileWaiting& whileWaiting) {
    error_code notNumeric;
    const auto numeric = asio::ip::make_address(server.host, notNumeric);
    if (!notNumeric)
        return {error_code(), {tcp::endpoint(numeric, server.port)}};

    std::promise<std::pair<error_code, Endpoints>> promise;
    auto found = promise.get_future();
    std::thread([server, promise = std::move(promise)]() mutable {
        try {
            asio::io_context context;
            error_code error;
            const auto results = tcp::resolver(context).resolve(
                server.host, std::to_string(server.port), tcp::resolver::numeric_service, error);
            promise.set_value({error, Endpoints(results.begin(), results.end())});
        } catch (...) {
            promise.set_exception(std::current_exception());
        }
    }).detach();
    const auto deadline = Clock::now() + timeout;
    do {
        if (Clock::now() >= deadline)
            return {beast::error::timeout, {}};
        if (whileWaiting && !whileWaiting())
            throwEnded();
    } while (found.wait_for(TimedStream::Patience) != std::future_status::ready);
    return found.get();
}

/// One request and its reply over a connection of its own.
class Exchange {
public:
    Exchange(std::string server, HttpClient::Limits limits,
             const HttpClient::WhileWaiting& whileWaiting)
        : server_(std::move(server)), limits_(limits), whileWaiting_(whileWaiting),
          stream_(whileWaiting) {}

    void connect() {
        const auto address = addressOf(server_);
        if (!address)
            fail("not a server address");
        const auto deadline = Clock::now() + limits_.connect;
        auto [error, endpoints] = lookUp(*address, limits_.connect, whileWaiting_);
        if (!error && endpoints.empty())
            error = asio::error::host_not_found;
        // A dead address must not use up the time of those behind it.
        for (std::size_t left = endpoints.size(); left > 0; --left) {
            const tcp::endpoint& endpoint = endpoints[endpoints.size() - left];
            const auto share = (deadline - Clock::now()) / static_cast<long>(left);
            error = stream_.wait(share, [&](auto handler) {
                stream_.stream().async_connect(endpoint, std::move(handler));
            });
            if (!error || stream_.isEnded())
                break;
            stream_.stream().close();
        }
        require(error);
        stream_.stream().socket().set_option(tcp::no_delay(true), error);
    }

    /// A server that refuses a request may answer and close before it has read it, so what a
    /// failed send means is left to receive().
    void send(const std::string& head, const std::string& body) {
        const std::array<asio::const_buffer, 2> bytes{asio::buffer(head), asio::buffer(body)};
        Pace pace(Clock::now() + limits_.rateWindow, limits_.leastBytesPerWindow,
                  limits_.rateWindow);
        const error_code error = stream_.wait(pace, [&](auto handler) {
            asio::async_write(stream_.stream(), bytes, std::move(handler));
        });
        if (error == beast::error::timeout || stream_.isEnded())
            require(error);
    }

    HttpAnswer receive(const HttpClient::BodyCheck& check) {
        const auto firstByte = Clock::now() + limits_.quiet;
        for (int replies = 0; replies <= MaxInterimReplies; ++replies) {
            Pace pace(firstByte, limits_.leastBytesPerWindow, limits_.rateWindow);
            TimedStream::Parser parser;
            parser.body_limit(limits_.largestBody);
            require(stream_.readHead(parser, pace));
            const unsigned status = parser.get().result_int();
            if (status >= 100 && status < 200 && status != 101)
                continue;
            if (status != 200)
                fail("HTTP status " + std::to_string(status) + ' ' +
                     printable(parser.get().reason()));
            return receiveBody(parser, pace, check);
        }
        fail("no final reply");
    }

    [[noreturn]] void fail(const std::string& reason) const {
        throw data::Error(data::number::RemoteServerUnavailable,
                          "The remote server machine does not exist or is unavailable: " + server_ +
                              ": " + reason);
    }

private:
    HttpAnswer receiveBody(TimedStream::Parser& parser, Pace& pace,
                           const HttpClient::BodyCheck& check) {
        HttpAnswer answer{std::string(parser.get()[beast::http::field::content_type]), {}};
        bool checked = !check;
        while (!parser.is_done()) {
            makeRoom(answer.body);
            const error_code error = stream_.readPiece(parser, pace, answer.body);
            if (!checked && !stream_.isEnded())
                checked = check(answer);
            require(error);
        }
        return answer;
    }

    /// Doubles a body's memory, but not beyond the limit: while it grows, it is there twice.
    void makeRoom(std::string& body) const {
        if (body.capacity() - body.size() < TimedStream::PieceSize &&
            body.capacity() < limits_.largestBody)
            body.reserve(std::min(std::max(2 * body.capacity(), TimedStream::PieceSize),
                                  limits_.largestBody));
    }

    void require(error_code error) const {
        if (stream_.isEnded())
            throwEnded();
        if (error)
            fail(reasonOf(error));
    }

    template <typename Text>
    static std::string printable(const Text& text) {
        std::string result(text.data(), text.size());
        for (char& c : result) {
            if (c < ' ' || c > '~')
                c = '?';
        }
        return result;
    }

    std::string server_;
    HttpClient::Limits limits_;
    const HttpClient::WhileWaiting& whileWaiting_;
    TimedStream stream_;
};

} // namespace

HttpAnswer HttpClient::post(const std::string& server, const std::string& path,
                            const std::string& body, const BodyCheck& check) {
    try {
        Exchange exchange(server, limits_, whileWaiting_);
        exchange.connect();
        exchange.send(requestHead(server, path, body.size()), body);
        return exchange.receive(check);
    } catch (const data::Error&) {
        throw;
    } catch (const std::exception& error) {
        throw data::Error(data::number::RemoteServerUnavailable,
                          "The call to the remote server failed: " + std::string(error.what()));
    }
}

std::string HttpClient::requestHead(const std::string& server, const std::string& path,
                                    std::size_t contentLength) {
    return "POST " + path +
           " HTTP/1.1\r\n"
           "User-Agent: ACTIVEDATA\r\n"
           "Host: " +
           server +
           "\r\n"
           "Content-Length: " +
           std::to_string(contentLength) +
           "\r\n"
           "Connection: Keep-Alive\r\n"
           "Cache-Control: no-cache\r\n"
           "\r\n";
}

} // namespace quillet::rds
