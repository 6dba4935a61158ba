#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>
#include <utility>

namespace quillet::rds {

/// A reply as it came.
struct HttpAnswer {
    std::string contentType; ///< of the head; "" where it has none
    std::string body;
};

/// One HTTP/1.1 POST at a time, blocking, in exactly the form that the data objects' web servers
/// know (MS-ADTG 2.2.2.1.1, example 4.4): these headers in this order and no Content-Type.
///
///     POST <path> HTTP/1.1
///     User-Agent: ACTIVEDATA
///     Host: <server>
///     Content-Length: <bytes>
///     Connection: Keep-Alive
///     Cache-Control: no-cache
class HttpClient {
public:
    static constexpr std::chrono::seconds ConnectTime{10};
    static constexpr std::chrono::seconds QuietTime{120};
    static constexpr std::chrono::seconds RateWindow{60};
    static constexpr std::size_t LeastBytesPerWindow = std::size_t{60} << 10U; ///< 60 KiB
    static constexpr std::size_t LargestBody = std::size_t{256} << 20U;        ///< 256 MiB

    /// What a server may take of its caller's time and memory.
    struct Limits {
        /// For looking the server's name up and for connecting, together.
        std::chrono::milliseconds connect = ConnectTime;
        /// From the end of the request to the first byte of the reply. `100 Continue` is none.
        std::chrono::milliseconds quiet = QuietTime;
        /// While a request is sent and once a reply has begun: at least so many bytes in every
        /// window of time that does not reach its end.
        std::chrono::milliseconds rateWindow = RateWindow;
        std::size_t leastBytesPerWindow = LeastBytesPerWindow;
        /// Bytes of a reply's body.
        std::size_t largestBody = LargestBody;
    };

    /// Called on the caller's thread again and again while a server is waited for, so that a
    /// window can stay alive. Returns false to end the call at once. Must not throw.
    using WhileWaiting = std::function<bool()>;

    /// Looks at a reply that is still coming, after every piece of its body until it has seen
    /// enough.
    /// @return whether it has.
    /// @throws to refuse the rest; post() throws it on.
    using BodyCheck = std::function<bool(const HttpAnswer& soFar)>;

    HttpClient() = default;
    explicit HttpClient(Limits limits, WhileWaiting whileWaiting = nullptr)
        : limits_(limits), whileWaiting_(std::move(whileWaiting)) {}

    /// Sends a body and returns the whole reply. Accepts replies with Content-Length, chunked, or
    /// ended by the close of the connection, and skips `100 Continue`.
    /// @param server host name or address, optionally ":" and a port (default 80); an IPv6
    ///               address with a port stands in brackets.
    /// @param path   of the request line, for example `/msadc/msadcs.dll/some.object.Getsql`.
    /// @throws data::Error 462 when the server cannot be reached, is too slow, cuts its reply,
    /// sends
    ///         more than the limit, answers with a status other than 200 or does not speak HTTP;
    ///         the description names the server and the reason. `number::Canceled` when
    ///         WhileWaiting has ended the call.
    HttpAnswer post(const std::string& server, const std::string& path, const std::string& body,
                    const BodyCheck& check = nullptr);

    /// The head of the request that post() sends, up to and including the blank line.
    static std::string requestHead(const std::string& server, const std::string& path,
                                   std::size_t contentLength);

private:
    Limits limits_;
    WhileWaiting whileWaiting_;
};

} // namespace quillet::rds
