#pragma once

// Internal to the server: it brings Boost with it.

#include "rds/http/Admission.h"
#include "rds/http/ClientAddress.h"
#include "rds/http/Deadline.h"
#include "rds/http/HttpServer.h"
#include "rds/http/MemoryBudget.h"
#include "rds/http/ReplyBuffer.h"
#include "rds/http/RequestReader.h"

#include <boost/asio/ip/tcp.hpp>

#include <array>
#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>

namespace quillet::rds {

class ConnectionTable;

/// What all connections of a server work with.
struct ServerParts {
    const HttpServer::Options& options;
    const HttpServer::Handler& handler;
    MemoryBudget& budget;
    Admission& admission;
    ConnectionTable& connections;
    std::function<void()> closed; ///< called whenever a connection has closed
};

/// One client, from accept to close: its request is read, queued, answered. All of it happens on
/// the network thread but for run(), which meets the rest in the ReplyBuffer.
class ServerConnection : public ServerTask, public std::enable_shared_from_this<ServerConnection> {
public:
    using Clock = Deadline::Clock;

    /// @param parts must live longer.
    ServerConnection(const ServerParts& parts, boost::asio::ip::tcp::socket socket,
                     const boost::asio::ip::tcp::endpoint& peer);

    /// Reads the request, and all that follows from it.
    void start();

    /// Answers without reading.
    void refuse(HttpServer::Refusal reason) override;

    /// Closes, to make room for another.
    void giveWay();

    /// Closes unless the request is complete.
    void dropUnread();

    /// Asks a handler to stop, and resets.
    void abandon(const std::string& why);

    /// Whether it holds no complete request: it has none yet, or is done with it.
    bool isIdle() const noexcept { return !isEngaged(); }
    bool isEngaged() const noexcept {
        return state_ == State::Queued || state_ == State::Answering;
    }

    Clock::time_point since() const noexcept { return since_; } ///< when it was accepted
    const std::string& client() const override { return address_.client; }

    bool prepare() override;
    void run() noexcept override;
    void ended() override;

private:
    enum class State { Reading, Queued, Answering, Refusing, Lingering, Closed };

    void readBody();
    void sendContinue();
    void readOn();
    void requestComplete();
    void answer(const RequestRefusal& refusal);
    void releaseMemory();
    void tell(HttpServer::Refusal reason) const noexcept;

    void watch();
    void watched(boost::system::error_code error, std::size_t bytes);

    void sendPending();
    void sendSome();
    void linger();

    void limit(Clock::time_point deadline);
    void timeIsUp();

    void leave();
    void reset();
    void close();

    const ServerParts& parts_;
    boost::asio::ip::tcp::socket socket_;
    const ClientAddress address_;
    const Clock::time_point since_ = Clock::now();
    State state_ = State::Reading;

    Deadline deadline_;
    MemoryBudget::Charge charge_;
    std::optional<RequestReader> reader_;
    HttpRequest request_; ///< while running, run()'s
    std::size_t bodySize_ = 0;
    std::stop_source gone_{std::nostopstate};
    bool running_ = false;

    std::optional<ReplyBuffer> buffer_;
    Clock::time_point replyEnd_;
    std::string sending_;
    std::size_t sent_ = 0; ///< of these
    bool isSending_ = false;

    std::array<char, 4096> ignored_{}; ///< what comes behind the request
    std::size_t ignoredBytes_ = 0;
    bool watching_ = false;
};

} // namespace quillet::rds
