#pragma once

// Internal to the server: it brings Boost with it.

#include "rds/http/HttpServer.h"
#include "rds/http/MemoryBudget.h"

#include <boost/asio/ip/tcp.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http/buffer_body.hpp>
#include <boost/beast/http/fields.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/read.hpp>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace quillet::rds {

/// Why a request is not taken, and what its client is told.
struct RequestRefusal {
    HttpServer::Refusal reason;
    unsigned status;
    std::string_view text;
};

/// One request as it comes in.
class RequestReader {
public:
    static constexpr std::uint32_t MaxHead = 64U << 10U; ///< bytes
    static constexpr std::size_t PieceSize = 16U << 10U; ///< bytes that are read at once
    static constexpr std::size_t FirstPiece = 2U << 10U; ///< of a head
    using Result = std::optional<RequestRefusal>;

    /// @param charge pays for the body, as it comes.
    RequestReader(std::size_t maxBody, MemoryBudget::Charge& charge);

    /// @param handler gets the error and a size.
    template <typename Handler>
    void readHead(boost::asio::ip::tcp::socket& socket, Handler handler) {
        boost::beast::http::async_read_header(socket, received_, parser_, std::move(handler));
    }

    /// What is wrong with a head that has come.
    Result checkHead();

    bool expectsContinue() const;
    bool isDone() const { return parser_.is_done(); }

    /// Reads a piece of the body.
    template <typename Handler>
    void readPiece(boost::asio::ip::tcp::socket& socket, Handler handler) {
        aimAtPiece();
        boost::beast::http::async_read_some(socket, received_, parser_, std::move(handler));
    }

    /// Takes what readPiece() has read.
    /// @param error of readPiece(); becomes that of the connection, if it has one.
    Result takePiece(boost::system::error_code& error);

    /// What an error in reading says of the request; nothing when it is the connection's.
    static Result refusalOf(boost::system::error_code error);

    /// Without `peer` and `gone`.
    HttpRequest release();

private:
    void aimAtPiece();
    bool append(std::string_view bytes);

    std::size_t maxBody_;
    MemoryBudget::Charge& charge_;
    boost::beast::flat_buffer received_{MaxHead + PieceSize};
    boost::beast::http::request_parser<boost::beast::http::buffer_body> parser_;
    std::shared_ptr<const boost::beast::http::fields> fields_; ///< without the body's trailers
    std::unique_ptr<std::array<char, PieceSize>> piece_;
    std::string body_;
};

} // namespace quillet::rds
