#pragma once

// Internal to HttpClient.cpp and HttpServer.cpp: it brings Boost with it.

#include <boost/asio/io_context.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/core/tcp_stream.hpp>
#include <boost/beast/http/buffer_body.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/read.hpp>

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace quillet::rds {

/// A connection whose blocking operations end in time. It belongs to one thread; other threads
/// may post to its context, and what they post runs while an operation is waited for.
class TimedStream {
public:
    using Duration = std::chrono::steady_clock::duration;

    static constexpr std::uint32_t MaxHead = 64U << 10U;     ///< bytes of a message's head
    static constexpr std::size_t PieceSize = 64U << 10U;     ///< bytes that are read at once
    static constexpr std::chrono::milliseconds Patience{20}; ///< between two calls of whileWaiting

    TimedStream() = default;
    /// @param whileWaiting called during and after every wait, from the same thread; may be empty.
    explicit TimedStream(std::function<void()> whileWaiting)
        : whileWaiting_(std::move(whileWaiting)) {}

    boost::asio::io_context& context() noexcept { return context_; }
    boost::beast::tcp_stream& stream() noexcept { return stream_; }

    /// Starts an operation and waits for its end.
    /// @param start gets the completion handler to pass on.
    /// @return the operation's error; boost::beast::error::timeout when it took too long.
    template <typename Start>
    boost::system::error_code wait(Duration timeout, Start start) {
        boost::system::error_code result;
        stream_.expires_after(timeout);
        start([&result](boost::system::error_code error, auto&&...) { result = error; });
        context_.restart();
        if (!whileWaiting_) {
            context_.run();
            return result;
        }
        do {
            context_.run_for(Patience);
            whileWaiting_();
        } while (!context_.stopped());
        return result;
    }

    template <bool IsRequest>
    using Parser = boost::beast::http::parser<IsRequest, boost::beast::http::buffer_body>;

    template <bool IsRequest>
    boost::system::error_code readHead(Parser<IsRequest>& parser, Duration timeout) {
        parser.header_limit(MaxHead);
        received_.reserve(PieceSize); // also the size in which Beast reads
        return wait(timeout, [&](auto handler) {
            boost::beast::http::async_read_header(stream_, received_, parser, std::move(handler));
        });
    }

    /// Reads the body behind a head. Memory follows what comes, not what the head announces.
    /// @param timeout for each piece.
    template <bool IsRequest>
    boost::system::error_code readBody(Parser<IsRequest>& parser, std::string& body,
                                       Duration timeout) {
        namespace http = boost::beast::http;
        const auto piece = std::make_unique<std::array<char, PieceSize>>();
        boost::system::error_code error;
        while (!error && !parser.is_done()) {
            auto& target = parser.get().body();
            target.data = piece->data();
            target.size = piece->size();
            error = wait(timeout, [&](auto handler) {
                http::async_read_some(stream_, received_, parser, std::move(handler));
            });
            if (error == http::error::need_buffer)
                error = {};
            body.append(piece->data(), piece->size() - target.size);
        }
        return error;
    }

private:
    std::function<void()> whileWaiting_;
    boost::asio::io_context context_{1};
    boost::beast::tcp_stream stream_{context_};
    boost::beast::flat_buffer received_{MaxHead + PieceSize};
};

/// What went wrong, in words. The system's own texts are in its language and code page, so they
/// are not used.
std::string reasonOf(boost::system::error_code error);

} // namespace quillet::rds
