#include "rds/http/BufferedReply.h"

#include "rds/http/ReplyHead.h"

#include <algorithm>
#include <stdexcept>
#include <string>

namespace quillet::rds {

void BufferedReply::write(std::string_view bytes) {
    if (bytes.empty())
        return;
    if (complete_)
        throw std::logic_error("the reply is complete");
    if (!begun_) {
        begun_ = true;
        // In one go with the beginning of the body, or they would travel in two packets.
        constexpr std::size_t Together = 4096;
        buffer_.write(replyHead(200, "").append(bytes.substr(0, Together)));
        bytes.remove_prefix(std::min(bytes.size(), Together));
    }
    buffer_.write(bytes);
}

void BufferedReply::error(unsigned status, std::string_view text) {
    begin();
    buffer_.write(errorReply(status, text));
}

void BufferedReply::page(unsigned status, std::string_view contentType, std::string_view body,
                         const Headers& more) {
    std::string head = pageHead(status, contentType, body.size(), more);
    begin();
    buffer_.write(head);
    if (hasBody_)
        buffer_.write(body);
}

void BufferedReply::finish() {
    if (!begun_)
        buffer_.write(replyHead(200, ""));
}

void BufferedReply::begin() {
    if (begun_)
        throw std::logic_error("the reply has begun");
    begun_ = true;
    complete_ = true;
}

} // namespace quillet::rds
