#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <stop_token>
#include <string>
#include <string_view>

namespace quillet::rds {

/// A request as it came, with its whole body.
struct HttpRequest {
    std::string method;
    std::string target;
    std::string body;
    std::string peer; ///< the client's address and port, for the log
    /// Value of the first header of that name (letter case does not count), or "".
    std::function<std::string(std::string_view name)> header;
    /// Asked to stop once nobody waits for the reply any more.
    std::stop_token gone;
};

/// The reply to one request. Either error() once, or write() as often as wanted: the head is sent
/// before the first byte of the body, and the body ends with the connection, as the data objects'
/// own web server does it (no Content-Length), so a reply need never be in memory as a whole.
class HttpReply {
public:
    virtual ~HttpReply() = default;

    /// Sends a piece of the body of a 200 reply.
    /// @throws db::Error 462 when the client is gone.
    virtual void write(std::string_view bytes) = 0;

    /// Sends a complete reply of another status with a one-line text body.
    virtual void error(unsigned status, std::string_view text) = 0;
};

/// A small blocking HTTP/1.1 server: one thread per connection up to a limit, one request per
/// connection. Beyond the limit a client gets 503. A handler that throws before the first write()
/// gives 500; after it, the connection is reset, so that the client sees a cut reply and not a
/// short one.
class HttpServer {
public:
    using Handler = std::function<void(const HttpRequest&, HttpReply&)>;

    struct Options {
        std::string address = "127.0.0.1";
        std::uint16_t port = 0; ///< 0: any free one, see port()
        std::size_t maxConnections = 64;
        std::size_t maxBody = 64U << 20U; ///< bytes of a request's body; larger ones get 413
        /// How long a client may take for a head, a piece of a body, or to read a piece of a reply.
        std::chrono::milliseconds patience{30'000};
        bool stopOnSignals = false; ///< run() stops on SIGINT and SIGTERM
    };

    /// Binds and listens.
    /// @throws db::Error when the address cannot be bound.
    HttpServer(Options options, Handler handler);
    ~HttpServer();
    HttpServer(const HttpServer&) = delete;
    HttpServer& operator=(const HttpServer&) = delete;

    std::uint16_t port() const;

    /// Serves until stop() and until the requests under way are answered. Clients whose request
    /// is not complete by then are dropped.
    void run();

    /// May be called from any thread, also before run(), but not from inside a signal handler.
    void stop();

private:
    class Impl;
    std::unique_ptr<Impl> impl_;
};

} // namespace quillet::rds
