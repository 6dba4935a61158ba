#include "rds/http/RequestReader.h"

#include <boost/beast/core/string.hpp>
#include <boost/beast/http/error.hpp>

#include <algorithm>
#include <limits>

namespace quillet::rds {

namespace {

namespace beast = boost::beast;
namespace http = beast::http;
using boost::system::error_code;
using Refusal = HttpServer::Refusal;

constexpr RequestRefusal BadRequest{Refusal::BadRequest, 400, "Not an HTTP request"};
constexpr RequestRefusal NoLength{Refusal::BadRequest, 411, "Content-Length required"};
constexpr RequestRefusal TooLarge{Refusal::TooLarge, 413, "The request is too large"};
constexpr RequestRefusal NoMemory{Refusal::NoMemory, 503, "The server is busy"};

/// Whether there is one way only to tell where the body ends. Beast takes some doubtful heads,
/// and whoever stands in front of the server may read those otherwise.
bool hasOneLength(const http::fields& head) {
    const auto lengths = head.count(http::field::content_length);
    const auto codings = head.count(http::field::transfer_encoding);
    if (lengths + codings > 1)
        return false;
    if (codings == 1)
        return beast::iequals(head[http::field::transfer_encoding], "chunked");
    return head[http::field::content_length].find(',') == beast::string_view::npos;
}

} // namespace

RequestReader::RequestReader(std::size_t maxBody, MemoryBudget::Charge& charge)
    : maxBody_(maxBody), charge_(charge) {
    parser_.header_limit(MaxHead);
    // checkHead() looks at the length, after who the client is.
    parser_.body_limit(std::numeric_limits<std::uint64_t>::max());
    received_.reserve(FirstPiece); // also the size in which Beast reads
}

RequestReader::Result RequestReader::checkHead() {
    const auto& head = parser_.get();
    if ((head.version() != 10 && head.version() != 11) || !hasOneLength(head))
        return BadRequest;
    if ((head.method() == http::verb::post || head.method() == http::verb::put) &&
        !parser_.content_length() && !parser_.chunked())
        return NoLength;
    if (parser_.content_length().value_or(0) > maxBody_)
        return TooLarge;
    parser_.body_limit(maxBody_);
    fields_ = std::make_shared<const http::fields>(head.base());
    return std::nullopt;
}

bool RequestReader::expectsContinue() const {
    return beast::iequals((*fields_)[http::field::expect], "100-continue");
}

void RequestReader::aimAtPiece() {
    if (!piece_) {
        piece_ = std::make_unique<std::array<char, PieceSize>>();
        received_.reserve(PieceSize);
    }
    auto& target = parser_.get().body();
    target.data = piece_->data();
    target.size = piece_->size();
}

RequestReader::Result RequestReader::takePiece(error_code& error) {
    if (error == http::error::need_buffer)
        error = {};
    if (!append({piece_->data(), piece_->size() - parser_.get().body().size}))
        return NoMemory;
    return refusalOf(error);
}

bool RequestReader::append(std::string_view bytes) {
    const std::size_t size = body_.size() + bytes.size();
    if (size > body_.capacity()) {
        // Memory follows what comes, not what the head announces.
        const std::size_t capacity = std::max(size, std::min(2 * body_.capacity(), maxBody_));
        if (!charge_.growBody(capacity - charge_.bodyBytes()))
            return false;
        body_.reserve(capacity);
    }
    body_ += bytes;
    return true;
}

RequestReader::Result RequestReader::refusalOf(error_code error) {
    if (error == http::error::body_limit)
        return TooLarge;
    if (error && error != http::error::end_of_stream && error != http::error::partial_message &&
        error.category() == make_error_code(http::error::bad_version).category())
        return BadRequest;
    return std::nullopt;
}

HttpRequest RequestReader::release() {
    HttpRequest request;
    const auto& head = parser_.get();
    request.method = std::string(head.method_string());
    request.target = std::string(head.target());
    request.body = std::move(body_);
    request.header = [fields = std::move(fields_)](std::string_view name) {
        return std::string((*fields)[beast::string_view(name.data(), name.size())]);
    };
    return request;
}

} // namespace quillet::rds
