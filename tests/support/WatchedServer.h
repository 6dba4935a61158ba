#pragma once

#include "rds/http/HttpServer.h"

#include <algorithm>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace quillet::tests {

/// A server with a list of whom it has refused.
class WatchedServer {
public:
    using Refusal = rds::HttpServer::Refusal;

    WatchedServer(rds::HttpServer::Options options, rds::HttpServer::Handler handler)
        : server_(noting(std::move(options)), std::move(handler)),
          thread_([this] { server_.run(); }) {}
    ~WatchedServer() { stop(); }
    WatchedServer(const WatchedServer&) = delete;
    WatchedServer& operator=(const WatchedServer&) = delete;

    void stop() {
        server_.stop();
        if (thread_.joinable())
            thread_.join();
    }

    std::uint16_t port() const { return server_.port(); }
    std::string address() const { return "127.0.0.1:" + std::to_string(port()); }
    rds::HttpServer::Load load() const { return server_.load(); }

    auto refused(Refusal reason) const {
        const std::lock_guard lock(mutex_);
        return std::ranges::count(refusals_, reason);
    }

private:
    rds::HttpServer::Options noting(rds::HttpServer::Options options) {
        options.onRefusal = [this](Refusal reason, const std::string&) {
            const std::lock_guard lock(mutex_);
            refusals_.push_back(reason);
        };
        return options;
    }

    mutable std::mutex mutex_;
    std::vector<Refusal> refusals_;
    rds::HttpServer server_;
    std::thread thread_;
};

} // namespace quillet::tests
