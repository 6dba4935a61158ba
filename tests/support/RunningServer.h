#pragma once

#include <string>
#include <thread>
#include <utility>

namespace quillet::tests {

/// Anything with port(), run() and stop(), running on a thread of its own.
template <typename Server>
class Running {
public:
    template <typename... Arguments>
    explicit Running(Arguments&&... arguments)
        : server_(std::forward<Arguments>(arguments)...), thread_([this] { server_.run(); }) {}

    ~Running() { stop(); }

    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;

    void stop() {
        server_.stop();
        if (thread_.joinable())
            thread_.join();
    }

    const Server& server() const { return server_; }

    auto port() const { return server_.port(); }
    std::string address() const { return "127.0.0.1:" + std::to_string(port()); }

private:
    Server server_;
    std::thread thread_;
};

} // namespace quillet::tests
