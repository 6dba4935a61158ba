#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <utility>

namespace quillet::rds {

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
    struct Timeouts {
        std::chrono::seconds connect{10};
        std::chrono::seconds read{180}; ///< without a byte from the server
    };

    /// Called on the caller's thread again and again while a server is waited for, so that a
    /// window can stay alive. Must not throw.
    using WhileWaiting = std::function<void()>;

    HttpClient() = default;
    explicit HttpClient(Timeouts timeouts, WhileWaiting whileWaiting = nullptr)
        : timeouts_(timeouts), whileWaiting_(std::move(whileWaiting)) {}

    /// Sends a body and returns the whole body of the reply. Accepts replies with Content-Length,
    /// chunked, or ended by the close of the connection, and skips `100 Continue`.
    /// @param server host name or address, optionally ":" and a port (default 80); an IPv6
    ///               address with a port stands in brackets.
    /// @param path   of the request line, for example `/msadc/msadcs.dll/some.object.Getsql`.
    /// @throws db::Error 462 when the server cannot be reached, is silent too long, cuts its
    ///         reply, answers with a status other than 200 or does not speak HTTP; the
    ///         description names the server and the reason.
    std::string post(const std::string& server, const std::string& path, const std::string& body);

    /// The head of the request that post() sends, up to and including the blank line.
    static std::string requestHead(const std::string& server, const std::string& path,
                                   std::size_t contentLength);

private:
    Timeouts timeouts_;
    WhileWaiting whileWaiting_;
};

} // namespace quillet::rds
