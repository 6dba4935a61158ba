#pragma once

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/write.hpp>

#include <array>
#include <chrono>
#include <functional>
#include <string>
#include <string_view>
#include <thread>
#include <utility>

namespace quillet::tests {

using boost::asio::ip::tcp;

inline void sendRaw(tcp::socket& socket, std::string_view bytes) {
    boost::system::error_code ignored;
    boost::asio::write(socket, boost::asio::buffer(bytes.data(), bytes.size()), ignored);
}

/// Everything up to the end of the connection, or up to the first `enough` bytes.
inline std::string receiveRaw(tcp::socket& socket, std::size_t enough = std::string::npos) {
    std::string bytes;
    std::array<char, 65536> piece{};
    boost::system::error_code error;
    while (!error && bytes.size() < enough)
        bytes.append(piece.data(), socket.read_some(boost::asio::buffer(piece), error));
    return bytes;
}

/// Everything up to and including certain bytes.
inline std::string receiveUntil(tcp::socket& socket, std::string_view lastBytes) {
    std::string bytes;
    while (!bytes.ends_with(lastBytes)) {
        const std::string more = receiveRaw(socket, 1);
        if (more.empty())
            break;
        bytes += more;
    }
    return bytes;
}

/// A web server that does exactly what a test says, for one connection.
class ScriptedServer {
public:
    explicit ScriptedServer(std::function<void(tcp::socket&)> script)
        : thread_([this, script = std::move(script)] {
              boost::system::error_code error;
              tcp::socket socket(context_);
              acceptor_.accept(socket, error);
              if (!error)
                  script(socket);
          }) {}

    /// Reads a request of which the body ends in `lastBytes`, sends a reply and closes.
    ScriptedServer(std::string_view lastBytes, std::string reply)
        : ScriptedServer([this, lastBytes, reply = std::move(reply)](tcp::socket& socket) {
              received_ = receiveUntil(socket, lastBytes);
              sendRaw(socket, reply);
          }) {}

    ~ScriptedServer() {
        // Frees a server that nobody has called.
        boost::system::error_code ignored;
        tcp::socket(context_).connect(acceptor_.local_endpoint(), ignored);
        thread_.join();
    }

    ScriptedServer(const ScriptedServer&) = delete;
    ScriptedServer& operator=(const ScriptedServer&) = delete;

    std::string port() const { return std::to_string(acceptor_.local_endpoint().port()); }
    std::string address() const { return "127.0.0.1:" + port(); }

    /// What the client sent; final when it has its reply.
    const std::string& received() const { return received_; }

private:
    std::string received_;
    boost::asio::io_context context_;
    tcp::acceptor acceptor_{context_, tcp::endpoint(boost::asio::ip::address_v4::loopback(), 0)};
    std::thread thread_;
};

/// A client that sends what a test says.
class RawClient {
public:
    /// @param from the client's own address; every one of 127.0.0.0/8 is this machine.
    explicit RawClient(std::uint16_t port, const char* from = "127.0.0.1") {
        socket_.open(tcp::v4());
        socket_.bind(tcp::endpoint(boost::asio::ip::make_address(from), 0));
        socket_.connect(tcp::endpoint(boost::asio::ip::address_v4::loopback(), port));
    }

    /// Sends and returns all of the answer.
    std::string ask(std::string_view request) {
        send(request);
        return reply();
    }

    void send(std::string_view bytes) { sendRaw(socket_, bytes); }
    std::string reply() { return receiveRaw(socket_); }

    tcp::socket& socket() { return socket_; }

private:
    boost::asio::io_context context_;
    tcp::socket socket_{context_};
};

} // namespace quillet::tests
