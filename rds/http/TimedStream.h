#pragma once

// Internal to HttpClient.cpp: it brings Boost with it.

#include "rds/http/Pace.h"

#include <boost/asio/any_io_executor.hpp>
#include <boost/asio/error.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/beast/core/basic_stream.hpp>
#include <boost/beast/core/error.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/core/rate_policy.hpp>
#include <boost/beast/http/buffer_body.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/read.hpp>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace quillet::rds {

/// A connection to a server whose blocking operations end in time. It belongs to one thread.
class TimedStream {
public:
    using Duration = Pace::Clock::duration;
    /// Asked again and again while an operation is waited for; false ends it.
    using WhileWaiting = std::function<bool()>;

    static constexpr std::uint32_t MaxHead = 64U << 10U;     ///< bytes of a message's head
    static constexpr std::size_t PieceSize = 64U << 10U;     ///< bytes that are read at once
    static constexpr std::chrono::milliseconds Patience{20}; ///< between two calls of whileWaiting

    TimedStream() = default;
    /// @param whileWaiting called during and after every wait, from the same thread; may be empty.
    explicit TimedStream(WhileWaiting whileWaiting) : whileWaiting_(std::move(whileWaiting)) {}

    auto& stream() noexcept { return stream_; }

    /// Whether whileWaiting has ended an operation.
    bool isEnded() const noexcept { return ended_; }

    /// Starts an operation and waits for its end.
    /// @param pace hears of the bytes that move.
    /// @param start gets the completion handler to pass on.
    /// @return the operation's error; boost::beast::error::timeout when it was too slow,
    ///         operation_aborted when whileWaiting has ended it. The connection is closed then.
    template <typename Start>
    boost::system::error_code wait(Pace& pace, Start start) {
        boost::system::error_code result;
        stream_.rate_policy().measure(&pace);
        start([&result](boost::system::error_code error, auto&&...) { result = error; });
        context_.restart();
        do {
            // What has come while whileWaiting took its time has come in time.
            if (whileWaiting_)
                context_.poll();
            if (!context_.stopped()) {
                const auto now = Pace::Clock::now();
                if (now >= pace.deadline()) {
                    abandon();
                    return boost::beast::error::timeout;
                }
                context_.run_until(whileWaiting_ ? std::min(pace.deadline(), now + Patience)
                                                 : pace.deadline());
            }
            if (whileWaiting_ && !whileWaiting_()) {
                ended_ = true;
                abandon();
                return boost::asio::error::operation_aborted;
            }
        } while (!context_.stopped());
        return result;
    }

    /// The same for an operation that may take a certain time.
    template <typename Start>
    boost::system::error_code wait(Duration timeout, Start start) {
        Pace pace(timeout);
        return wait(pace, std::move(start));
    }

    using Parser = boost::beast::http::response_parser<boost::beast::http::buffer_body>;

    boost::system::error_code readHead(Parser& parser, Pace& pace) {
        parser.header_limit(MaxHead);
        received_.reserve(PieceSize); // also the size in which Beast reads
        return wait(pace, [&](auto handler) {
            boost::beast::http::async_read_header(stream_, received_, parser, std::move(handler));
        });
    }

    /// Reads a piece of the body behind a head and appends it. There is more until the parser is
    /// done. Memory follows what comes, not what the head announces.
    boost::system::error_code readPiece(Parser& parser, Pace& pace, std::string& body) {
        namespace http = boost::beast::http;
        const auto piece = std::make_unique<std::array<char, PieceSize>>();
        auto& target = parser.get().body();
        target.data = piece->data();
        target.size = piece->size();
        const boost::system::error_code error = wait(pace, [&](auto handler) {
            http::async_read_some(stream_, received_, parser, std::move(handler));
        });
        body.append(piece->data(), piece->size() - target.size);
        return error == http::error::need_buffer ? boost::system::error_code() : error;
    }

private:
    /// Tells a pace of every byte that moves; where Beast asks for a policy, it may be any amount.
    class Meter {
    public:
        void measure(Pace* pace) noexcept { pace_ = pace; }

    private:
        friend class boost::beast::rate_policy_access;

        static constexpr std::size_t Any = static_cast<std::size_t>(-1);

        std::size_t available_read_bytes() const noexcept { return Any; }
        std::size_t available_write_bytes() const noexcept { return Any; }
        void transfer_read_bytes(std::size_t bytes) { pace_->moved(bytes); }
        void transfer_write_bytes(std::size_t bytes) { pace_->moved(bytes); }
        void on_timer() const noexcept {}

        Pace* pace_ = nullptr;
    };

    /// Closes, and lets the operation that is under way come to its end.
    void abandon() {
        stream_.close();
        context_.run();
    }

    WhileWaiting whileWaiting_;
    bool ended_ = false;
    boost::asio::io_context context_{1};
    boost::beast::basic_stream<boost::asio::ip::tcp, boost::asio::any_io_executor, Meter> stream_{
        context_};
    boost::beast::flat_buffer received_{MaxHead + PieceSize};
};

} // namespace quillet::rds
