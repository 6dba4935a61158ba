#include "rds/http/HttpServer.h"

#include "db/Error.h"
#include "rds/http/TimedStream.h"

#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/signal_set.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core/string.hpp>
#include <boost/beast/http/status.hpp>

#include <array>
#include <atomic>
#include <csignal>
#include <cstdio>
#include <list>
#include <sstream>
#include <stdexcept>
#include <thread>
#include <utility>

namespace quillet::rds {

namespace {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = beast::http;
using asio::ip::tcp;
using boost::system::error_code;
using Clock = std::chrono::steady_clock;

constexpr auto LingerTime = std::chrono::seconds(1);

std::string httpDate() {
    using namespace std::chrono;
    static constexpr std::array Days{"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    static constexpr std::array Months{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                       "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    const auto now = floor<seconds>(system_clock::now());
    const auto today = floor<days>(now);
    const year_month_day date(today);
    const hh_mm_ss time(now - today);
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%s, %02u %s %04d %02d:%02d:%02d GMT",
                  Days[weekday(today).c_encoding()], static_cast<unsigned>(date.day()),
                  Months[static_cast<unsigned>(date.month()) - 1], static_cast<int>(date.year()),
                  static_cast<int>(time.hours().count()), static_cast<int>(time.minutes().count()),
                  static_cast<int>(time.seconds().count()));
    return text.data();
}

std::string replyHead(unsigned status, const std::string& moreHeaders) {
    const auto reason = http::obsolete_reason(http::int_to_status(status));
    std::string head = "HTTP/1.1 " + std::to_string(status) + ' ';
    head.append(reason.data(), reason.size());
    return head + "\r\nServer: Quillet\r\nDate: " + httpDate() + "\r\n" + moreHeaders +
           "Connection: close\r\n\r\n";
}

std::string errorReply(unsigned status, std::string_view text) {
    std::string headers = "Content-Type: text/plain; charset=utf-8\r\nContent-Length: " +
                          std::to_string(text.size() + 1) + "\r\n";
    if (status == 405)
        headers += "Allow: POST\r\n";
    std::string reply = replyHead(status, headers);
    reply += text;
    return reply + '\n';
}

/// One client: its socket, and the thread's work on it.
class Connection {
public:
    Connection(const HttpServer::Options& options, const HttpServer::Handler& handler)
        : options_(options), handler_(handler) {}

    tcp::socket& socket() { return stream_.stream().socket(); }

    /// Reads the request, answers it, closes.
    void serve() noexcept {
        try {
            error_code ignored;
            socket().set_option(tcp::no_delay(true), ignored);
            HttpRequest request;
            if (readRequest(request)) {
                answer(request);
                closeGently();
            }
        } catch (const std::exception&) {
            reset();
        }
        stream_.stream().close();
        done_ = true;
    }

    /// From another thread: gives up what the client has not yet asked.
    void dropUnlessAnswering() {
        asio::post(stream_.context(), [this] {
            stopping_ = true;
            if (!answering_)
                stream_.stream().close();
        });
    }

    bool isDone() const noexcept { return done_; }

    /// Tells a client too many, without reading its request and without waiting.
    void refuse() {
        error_code ignored;
        const std::string reply = errorReply(503, "Too many connections");
        socket().non_blocking(true, ignored);
        socket().write_some(asio::buffer(reply), ignored);
        socket().shutdown(tcp::socket::shutdown_send, ignored);
    }

private:
    class Reply : public HttpReply {
    public:
        explicit Reply(Connection& connection) : connection_(connection) {}

        void write(std::string_view bytes) override {
            if (bytes.empty())
                return;
            std::string head;
            if (!started_)
                head = replyHead(200, "");
            started_ = true;
            connection_.send(head, bytes);
        }

        void error(unsigned status, std::string_view text) override {
            if (started_)
                throw std::logic_error("the reply has begun");
            started_ = true;
            connection_.send("", errorReply(status, text));
        }

        bool started() const noexcept { return started_; }

    private:
        Connection& connection_;
        bool started_ = false;
    };

    void send(std::string_view head, std::string_view body) {
        const std::array<asio::const_buffer, 2> bytes{asio::buffer(head.data(), head.size()),
                                                      asio::buffer(body.data(), body.size())};
        const error_code error = stream_.wait(options_.patience, [&](auto handler) {
            asio::async_write(stream_.stream(), bytes, std::move(handler));
        });
        if (error)
            throw db::Error(db::number::RemoteServerUnavailable,
                            "The client is gone: " + reasonOf(error));
    }

    /// @return false when there is no request to answer.
    bool readRequest(HttpRequest& request) {
        TimedStream::Parser<true> parser;
        parser.body_limit(options_.maxBody);
        Pace head(options_.patience);
        error_code error = stream_.readHead(parser, head);
        if (error)
            return refuseUnread(error);
        const auto method = parser.get().method();
        if ((method == http::verb::post || method == http::verb::put) && !parser.content_length() &&
            !parser.chunked()) {
            send("", errorReply(411, "Content-Length required"));
            closeGently();
            return false;
        }
        if (beast::iequals(parser.get()[http::field::expect], "100-continue"))
            send("HTTP/1.1 100 Continue\r\n\r\n", "");
        while (!parser.is_done()) {
            Pace piece(options_.patience);
            error = stream_.readPiece(parser, piece, request.body);
            if (error)
                return refuseUnread(error);
        }

        auto message = parser.release();
        request.method = std::string(message.method_string());
        request.target = std::string(message.target());
        std::ostringstream peer;
        error_code ignored;
        peer << socket().remote_endpoint(ignored);
        request.peer = peer.str();
        request.header = [fields = http::fields(std::move(message.base()))](std::string_view name) {
            return std::string(fields[beast::string_view(name.data(), name.size())]);
        };
        return true;
    }

    bool refuseUnread(error_code error) {
        if (error == http::error::body_limit) {
            send("", errorReply(413, "The request is too large"));
            closeGently();
        } else if (error != http::error::end_of_stream && error != http::error::partial_message &&
                   error.category() == make_error_code(http::error::bad_version).category()) {
            send("", errorReply(400, "Not an HTTP request"));
            closeGently();
        }
        return false;
    }

    void answer(const HttpRequest& request) {
        answering_ = true;
        Reply reply(*this);
        try {
            handler_(request, reply);
        } catch (const std::exception&) {
            if (reply.started())
                throw;
            reply.error(500, "Internal server error");
        }
        if (!reply.started())
            send(replyHead(200, ""), "");
        answering_ = false;
    }

    /// Closing with unread bytes would reset the connection, and the client might lose the end
    /// of its reply.
    void closeGently() {
        error_code error;
        socket().shutdown(tcp::socket::shutdown_send, error);
        const auto deadline = Clock::now() + LingerTime;
        std::array<char, 4096> scratch{};
        while (!error && !stopping_) {
            error = stream_.wait(deadline - Clock::now(), [&](auto handler) {
                stream_.stream().async_read_some(asio::buffer(scratch), std::move(handler));
            });
        }
    }

    /// Closes so that the client cannot take what it has for a whole reply.
    void reset() noexcept {
        error_code ignored;
        socket().set_option(tcp::socket::linger(true, 0), ignored);
        socket().close(ignored);
    }

    const HttpServer::Options& options_;
    const HttpServer::Handler& handler_;
    TimedStream stream_;
    bool answering_ = false;
    bool stopping_ = false;
    std::atomic<bool> done_ = false;
};

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
            throw db::Error(db::number::InvalidArgument, "Cannot listen on " + options_.address +
                                                             ':' + std::to_string(options_.port) +
                                                             ": " + reasonOf(error));
    }

    ~Impl() { joinAll(); }
    Impl(const Impl&) = delete;
    Impl& operator=(const Impl&) = delete;

    std::uint16_t port() const { return acceptorPort_; }

    void run() {
        if (options_.stopOnSignals) {
            signals_.add(SIGINT);
            signals_.add(SIGTERM);
            signals_.async_wait([this](error_code error, int) {
                if (!error)
                    stopNow();
            });
        }
        accept();
        context_.run();
        joinAll();
    }

    void stop() {
        asio::post(context_, [this] { stopNow(); });
    }

private:
    struct Worker {
        std::shared_ptr<Connection> connection;
        std::thread thread;
    };

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
            acceptorPort_ = acceptor_.local_endpoint(error).port();
    }

    void accept() {
        next_ = std::make_shared<Connection>(options_, handler_);
        acceptor_.async_accept(next_->socket(), [this](error_code error) { accepted(error); });
    }

    void accepted(error_code error) {
        if (!acceptor_.is_open())
            return;
        workers_.remove_if([](Worker& worker) {
            if (!worker.connection->isDone())
                return false;
            worker.thread.join();
            return true;
        });
        if (error) // out of handles, most likely
            later(std::chrono::milliseconds(100), [this] {
                if (acceptor_.is_open())
                    accept();
            });
        else {
            serve(std::move(next_));
            accept();
        }
    }

    void serve(std::shared_ptr<Connection> connection) {
        if (workers_.size() < options_.maxConnections) {
            try {
                std::thread thread([connection] { connection->serve(); });
                workers_.push_back({std::move(connection), std::move(thread)});
                return;
            } catch (const std::system_error&) { // no thread to be had
            }
        }
        connection->refuse();
        later(LingerTime, [connection] {}); // keeps it open for so long
    }

    template <typename Action>
    void later(Clock::duration delay, Action action) {
        auto timer = std::make_shared<asio::steady_timer>(context_, delay);
        timer->async_wait([timer, action = std::move(action)](error_code) { action(); });
    }

    void stopNow() {
        error_code ignored;
        acceptor_.close(ignored);
        signals_.clear(ignored); // a second signal ends the program at once
        signals_.cancel(ignored);
        for (Worker& worker : workers_)
            worker.connection->dropUnlessAnswering();
    }

    void joinAll() {
        for (Worker& worker : workers_)
            worker.thread.join();
        workers_.clear();
    }

    Options options_;
    Handler handler_;
    asio::io_context context_{1};
    tcp::acceptor acceptor_{context_};
    asio::signal_set signals_{context_};
    std::uint16_t acceptorPort_ = 0;
    std::shared_ptr<Connection> next_;
    std::list<Worker> workers_;
};

HttpServer::HttpServer(Options options, Handler handler)
    : impl_(std::make_unique<Impl>(std::move(options), std::move(handler))) {}

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

} // namespace quillet::rds
