#pragma once

#include "tests/support/ScriptedServer.h"

#include <atomic>

namespace quillet::tests {

/// A bad line between a counter and its head office: hands requests on and replies back, after a
/// test has had its way with the reply.
class TamperingProxy {
public:
    /// Gets a reply's number, from 1, and its bytes; returns what the counter shall see.
    using Tamper = std::function<std::string(int number, std::string reply)>;

    TamperingProxy(const std::string& headOfficeAddress, Tamper tamper)
        : tamper_(std::move(tamper)), headOffice_(endpointOf(headOfficeAddress)),
          thread_([this] { run(); }) {}

    ~TamperingProxy() {
        stopping_ = true;
        boost::system::error_code ignored;
        tcp::socket(context_).connect(acceptor_.local_endpoint(), ignored);
        thread_.join();
    }

    TamperingProxy(const TamperingProxy&) = delete;
    TamperingProxy& operator=(const TamperingProxy&) = delete;

    std::string address() const {
        return "127.0.0.1:" + std::to_string(acceptor_.local_endpoint().port());
    }

private:
    static tcp::endpoint endpointOf(const std::string& address) {
        const std::string port = address.substr(address.rfind(':') + 1);
        return {boost::asio::ip::address_v4::loopback(),
                static_cast<std::uint16_t>(std::stoi(port))};
    }

    void run() {
        for (int number = 1;; ++number) {
            boost::system::error_code error;
            tcp::socket counter(context_);
            acceptor_.accept(counter, error);
            if (error || stopping_)
                return;
            // Every body ends in its closing delimiter.
            const std::string request = receiveUntil(counter, "--\r\n");
            tcp::socket server(context_);
            server.connect(headOffice_, error);
            sendRaw(server, request);
            sendRaw(counter, tamper_(number, receiveRaw(server)));
        }
    }

    Tamper tamper_;
    tcp::endpoint headOffice_;
    boost::asio::io_context context_;
    tcp::acceptor acceptor_{context_, tcp::endpoint(boost::asio::ip::address_v4::loopback(), 0)};
    std::atomic<bool> stopping_ = false;
    std::thread thread_;
};

} // namespace quillet::tests
