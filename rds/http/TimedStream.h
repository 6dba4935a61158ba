#pragma once

// Internal to HttpClient.cpp and HttpServer.cpp: it brings Boost with it.

#include <boost/asio/io_context.hpp>
#include <boost/beast/core/tcp_stream.hpp>

#include <chrono>
#include <string>

namespace quillet::rds {

/// A connection whose blocking operations end in time. It belongs to one thread; other threads
/// may post to its context, and what they post runs while an operation is waited for.
class TimedStream {
public:
    boost::asio::io_context& context() noexcept { return context_; }
    boost::beast::tcp_stream& stream() noexcept { return stream_; }

    /// Starts an operation and waits for its end.
    /// @param start gets the completion handler to pass on.
    /// @return the operation's error; boost::beast::error::timeout when it took too long.
    template <typename Start>
    boost::system::error_code wait(std::chrono::steady_clock::duration timeout, Start start) {
        boost::system::error_code result;
        stream_.expires_after(timeout);
        start([&result](boost::system::error_code error, auto&&...) { result = error; });
        context_.restart();
        context_.run();
        return result;
    }

private:
    boost::asio::io_context context_{1};
    boost::beast::tcp_stream stream_{context_};
};

/// What went wrong, in words. The system's own texts are in its language and code page, so they
/// are not used.
std::string reasonOf(boost::system::error_code error);

} // namespace quillet::rds
