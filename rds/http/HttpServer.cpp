#include "rds/http/HttpServer.h"

#include "data/Error.h"
#include "rds/http/Admission.h"
#include "rds/http/ConnectionTable.h"
#include "rds/http/Handles.h"
#include "rds/http/MemoryBudget.h"
#include "rds/http/NetworkErrors.h"
#include "rds/http/ServerConnection.h"

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/signal_set.hpp>
#include <boost/asio/steady_timer.hpp>

#include <algorithm>
#include <csignal>
#include <exception>
#include <utility>

namespace quillet::rds {

namespace {

namespace asio = boost::asio;
using asio::ip::tcp;
using boost::system::error_code;

/// Until the next try when the system has no room for a connection.
constexpr auto AcceptPause = std::chrono::milliseconds(50);

/// Connections for which there are handles, beside the workers' databases and all else.
std::size_t connectionLimit(const HttpServer::Options& options) {
    constexpr std::size_t Least = 4;
    constexpr std::size_t PerWorker = 2;
    constexpr std::size_t Others = 24;
    const std::size_t handles = handleLimit();
    const std::size_t reserve = PerWorker * options.workers + Others;
    return std::min(options.maxConnections, std::max(Least, handles - std::min(handles, reserve)));
}

} // namespace

class HttpServer::Impl {
public:
    Impl(Options options, Handler handler)
        : options_(std::move(options)), handler_(std::move(handler)) {
        error_code error;
        const auto found = tcp::resolver(context_).resolve(
            options_.address, std::to_string(options_.port),
            tcp::resolver::passive | tcp::resolver::numeric_service, error);
        if (!error && found.empty())
            error = asio::error::host_not_found;
        if (!error)
            listen(found.begin()->endpoint(), error);
        if (error)
            throw data::Error(data::number::InvalidArgument,
                              "Cannot listen on " + options_.address + ':' +
                                  std::to_string(options_.port) + ": " + reasonOf(error));
    }

    ~Impl() { admission_.join(); }
    Impl(const Impl&) = delete;
    Impl& operator=(const Impl&) = delete;

    std::uint16_t port() const { return port_; }

    void run() {
        if (options_.stopOnSignals) {
            signals_.add(SIGINT);
            signals_.add(SIGTERM);
            signals_.async_wait([this](error_code error, int) {
                if (!error)
                    stopNow();
            });
        }
        admission_.start();
        accept();
        while (!context_.stopped()) {
            try {
                context_.run();
            } catch (const std::exception&) {
                // Without memory for one client, the others go on; what it had open, its time
                // limits close.
            }
        }
        admission_.join();
    }

    void stop() {
        asio::post(context_, [this] { stopNow(); });
    }

    Load load() const {
        return {connections_.size(), admission_.queued(), admission_.running(), budget_.used()};
    }

private:
    void listen(const tcp::endpoint& endpoint, error_code& error) {
        acceptor_.open(endpoint.protocol(), error);
#ifndef _WIN32
        // On Windows this option would let a second server share the port.
        if (!error)
            acceptor_.set_option(tcp::acceptor::reuse_address(true), error);
#endif
        if (!error)
            acceptor_.bind(endpoint, error);
        if (!error)
            acceptor_.listen(tcp::acceptor::max_listen_connections, error);
        if (!error)
            port_ = acceptor_.local_endpoint(error).port();
    }

    void accept() {
        acceptor_.async_accept([this](error_code error, tcp::socket socket) {
            if (stopping_)
                return;
            try {
                if (!error)
                    welcome(std::move(socket));
            } catch (const std::exception&) {
                error = asio::error::no_memory;
            }
            if (!error || error == asio::error::connection_aborted)
                accept();
            else if (error == asio::error::no_descriptors)
                makeRoomForNext();
            else
                acceptLater();
        });
    }

    /// Without a handle left, accept() fails whether somebody waits or not: nobody gives way before
    /// somebody does.
    void makeRoomForNext() {
        acceptor_.async_wait(tcp::acceptor::wait_read, [this](error_code error) {
            if (stopping_)
                return;
            if (!error && connections_.makeRoom())
                accept();
            else
                acceptLater();
        });
    }

    void acceptLater() {
        acceptTimer_.expires_after(AcceptPause);
        acceptTimer_.async_wait([this](error_code) {
            if (!stopping_)
                accept();
        });
    }

    void welcome(tcp::socket socket) {
        error_code error;
        const auto peer = socket.remote_endpoint(error);
        if (error)
            return; // it has left already
        while (connections_.isFull() && connections_.makeRoom()) {
        }
        const bool full = connections_.isFull();
        const auto connection = std::make_shared<ServerConnection>(parts_, std::move(socket), peer);
        connections_.add(connection);
        if (full)
            connection->refuse(Refusal::NoRoom);
        else
            connection->start();
    }

    void stopNow() {
        if (std::exchange(stopping_, true))
            return;
        error_code ignored;
        acceptor_.close(ignored);
        acceptTimer_.cancel();
        signals_.clear(ignored); // a second signal ends the program at once
        signals_.cancel(ignored);
        for (const auto& connection : connections_.all())
            connection->dropUnread();
        drainTimer_.expires_after(options_.drain);
        drainTimer_.async_wait([this](error_code error) {
            if (error)
                return;
            for (const auto& connection : connections_.all())
                connection->abandon("the server stops");
            context_.stop();
        });
        endWhenDone();
    }

    void endWhenDone() {
        if (stopping_ && connections_.size() == 0 && admission_.running() == 0)
            context_.stop();
    }

    // Connections that are still in the context's hands when it ends use what is above it.
    const Options options_;
    const Handler handler_;
    MemoryBudget budget_{options_.memory, options_.workingMemory(options_.maxBody)};
    ConnectionTable connections_{connectionLimit(options_)};
    asio::io_context context_{1};
    Admission admission_{context_, options_.workers, options_.maxQueued, [this] { endWhenDone(); }};
    const ServerParts parts_{options_, handler_, budget_, admission_, connections_, [this] {
                                 admission_.dispatch();
                                 endWhenDone();
                             }};
    asio::executor_work_guard<asio::io_context::executor_type> work_{context_.get_executor()};
    tcp::acceptor acceptor_{context_};
    asio::steady_timer acceptTimer_{context_};
    asio::steady_timer drainTimer_{context_};
    asio::signal_set signals_{context_};
    std::uint16_t port_ = 0;
    bool stopping_ = false;
};

HttpServer::HttpServer(Options options, Handler handler) {
    options.check();
    impl_ = std::make_unique<Impl>(std::move(options), std::move(handler));
}

HttpServer::~HttpServer() = default;

std::uint16_t HttpServer::port() const {
    return impl_->port();
}

void HttpServer::run() {
    impl_->run();
}

void HttpServer::stop() {
    impl_->stop();
}

HttpServer::Load HttpServer::load() const {
    return impl_->load();
}

} // namespace quillet::rds
