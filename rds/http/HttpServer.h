#pragma once

#include "rds/http/AddressList.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quillet::rds {

/// A request as it came, with its whole body.
struct HttpRequest {
    std::string method;
    std::string target;
    std::string body;
    std::string peer; ///< the client's address and port, for the log
    /// Value of the first header of that name (letter case does not count), or "".
    std::function<std::string(std::string_view name)> header;
    /// Asked to stop once nobody waits for the reply any more: the client has gone or reads too
    /// slowly, the reply's time is up, or the server stops. A std::stop_callback runs on the
    /// server's network thread, which serves every client: it must neither block nor throw.
    std::stop_token gone;
};

/// The reply to one request. Either error() or page() once, or write() as often as wanted: the
/// head is sent before the first byte of the body, and the body ends with the connection, as the
/// data objects' own web server does it (no Content-Length), so a reply need never be in memory
/// as a whole.
class HttpReply {
public:
    using Headers = std::vector<std::pair<std::string, std::string>>; ///< names and values

    virtual ~HttpReply() = default;

    /// Sends a piece of the body of a 200 reply. Waits while the client has not taken most of
    /// what was written before.
    /// @throws data::Error 462 when the client is gone or too slow, or the time is up.
    virtual void write(std::string_view bytes) = 0;

    /// Sends a complete reply of another status with a one-line text body.
    /// @throws data::Error 462 as write() does.
    virtual void error(unsigned status, std::string_view text) = 0;

    /// Sends a complete reply of any status, with its Content-Length and `Cache-Control: no-store`;
    /// to HEAD without its body.
    /// @param contentType for example `text/html; charset=utf-8`; "" for none.
    /// @param more further headers, as they stand.
    /// @throws data::Error 462 as write() does, and 3001 for a header with a line end in it.
    virtual void page(unsigned status, std::string_view contentType, std::string_view body,
                      const Headers& more = {}) = 0;
};

/// An HTTP/1.1 server for clients of every kind, hostile ones included: one request per
/// connection. One thread reads and writes for all connections; a request that is complete waits
/// in a queue for one of the workers, on which the handler runs. A handler that throws before the
/// first write() gives 500; after it, the connection is reset, so that the client sees a cut
/// reply and not a short one.
///
/// Nothing here is without a limit, and where clients compete for one, no client (an IPv4
/// address, or the first half of an IPv6 one) gets more than three quarters of the workers, of
/// the memory and of the connections, whether others are there or not: they may come at any time.
/// Queued requests are taken from one client after the other.
///
/// A client that ends its side of the connection before it has its reply counts as gone.
class HttpServer {
public:
    /// Runs on a worker, several at once.
    using Handler = std::function<void(const HttpRequest&, HttpReply&)>;

    /// Why a client did not get what it came for.
    enum class Refusal {
        NotAllowed, ///< its address is not on the list: 403
        BadRequest, ///< 400 or 411
        TooLarge,   ///< 413
        TooSlow,    ///< no complete request in time: closed
        QueueFull,  ///< too many requests wait already, of all clients or of this one: 503
        NoMemory,   ///< 503
        NoRoom,     ///< too many connections: 503, or closed to make room for another
        Gone,       ///< it left while its request was queued
    };

    /// How busy the server is.
    struct Load {
        std::size_t connections = 0;
        std::size_t queued = 0;    ///< complete requests that wait for a worker
        std::size_t answering = 0; ///< requests that have a worker
        std::size_t memory = 0;    ///< bytes charged for bodies, their decoding and replies
    };

    struct Options {
        std::string address = "127.0.0.1";
        std::uint16_t port = 0; ///< 0: any free one, see port()

        /// At once; fewer where the process may not open so many files: a reserve of 24 and two
        /// per worker, for databases, stays free. When all are taken, a connection without a
        /// complete request gives way to a new one: of the client that has most of these, the
        /// oldest. If there is none, the new one gets 503.
        std::size_t maxConnections = 512;
        std::size_t workers = 16; ///< threads that run handlers, at most
        /// Complete requests that wait for a worker. Beyond it, the latest one of the client that
        /// has most in the queue gets 503.
        std::size_t maxQueued = 256;

        std::size_t maxBody = std::size_t{1} << 20U; ///< bytes of a request's; larger ones get 413
        /// Bytes of all bodies and replies in flight, and of what handlers make of bodies.
        std::size_t memory = std::size_t{256} << 20U;
        /// Bytes that a handler may need for each byte of a body, beside it. A request waits
        /// until it can have them.
        std::size_t decodeFactor = 24;
        std::size_t replyBuffer = std::size_t{256} << 10U; ///< bytes of one reply that may wait

        std::chrono::milliseconds headTime{10'000};   ///< from connecting to the end of the head
        std::chrono::milliseconds bodyTime{60'000};   ///< for the whole body
        std::chrono::milliseconds replyTime{600'000}; ///< for the handler and the whole reply
        /// How long a reply may wait for its client to take any more of it.
        std::chrono::milliseconds patience{30'000};
        std::chrono::milliseconds drain{30'000}; ///< for requests under way when the server stops

        /// Who is served; everybody without a list. Others get 403 before their body is read.
        std::optional<AddressList> admits = std::nullopt;
        /// Hears of every refusal with the client's address and port. Runs on the network thread:
        /// it must not block.
        std::function<void(Refusal reason, const std::string& peer)> onRefusal = nullptr;

        bool stopOnSignals = false; ///< run() stops on SIGINT and SIGTERM

        /// Bytes that answering a request takes, beside its body.
        std::size_t workingMemory(std::size_t body) const {
            return decodeFactor * body + replyBuffer;
        }

        /// @throws data::Error 3001 with a sentence when these cannot work together.
        void check() const;
    };

    /// Binds and listens.
    /// @throws data::Error 3001 when the options cannot work or the address cannot be bound.
    HttpServer(Options options, Handler handler);
    ~HttpServer();
    HttpServer(const HttpServer&) = delete;
    HttpServer& operator=(const HttpServer&) = delete;

    std::uint16_t port() const;

    /// Serves until stop(), on the calling thread and the workers; once. The port refuses from
    /// then on, clients whose request is not complete are dropped, the others are answered. After
    /// Options::drain the rest is asked to stop (HttpRequest::gone) and reset, and run() waits
    /// for the handlers to return.
    void run();

    /// May be called from any thread, also before run(), but not from inside a signal handler.
    void stop();

    /// May be called from any thread.
    Load load() const;

private:
    class Impl;
    std::unique_ptr<Impl> impl_;
};

} // namespace quillet::rds
