#pragma once

#include "rds/http/HttpServer.h"
#include "rds/http/ReplyBuffer.h"

namespace quillet::rds {

/// A reply on its way into a buffer; on a worker.
class BufferedReply : public HttpReply {
public:
    /// @param hasBody false for HEAD: nothing but the head is sent.
    explicit BufferedReply(ReplyBuffer& buffer, bool hasBody = true)
        : buffer_(buffer), hasBody_(hasBody) {}

    void write(std::string_view bytes) override;
    void error(unsigned status, std::string_view text) override;
    void page(unsigned status, std::string_view contentType, std::string_view body,
              const Headers& more) override;

    /// Completes a reply of which the handler has written nothing.
    void finish();

    bool hasBegun() const noexcept { return begun_; }

private:
    /// @throws std::logic_error when the reply has begun.
    void begin();

    ReplyBuffer& buffer_;
    bool hasBody_;
    bool begun_ = false;
    bool complete_ = false;
};

} // namespace quillet::rds
