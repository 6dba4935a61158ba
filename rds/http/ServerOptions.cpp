#include "data/Error.h"
#include "rds/http/HttpServer.h"
#include "rds/http/MemoryBudget.h"

#include <limits>
#include <string>

namespace quillet::rds {

namespace {

void require(bool condition, const std::string& otherwise) {
    if (!condition)
        throw data::Error(data::number::InvalidArgument, otherwise);
}

} // namespace

void HttpServer::Options::check() const {
    using namespace std::chrono_literals;
    constexpr std::size_t LeastReplyBuffer = 4096;
    constexpr auto MaxTime = std::chrono::hours(24 * 365); // adds up without overflowing

    require(maxConnections > 0, "The server needs at least one connection.");
    require(workers > 0, "The server needs at least one worker.");
    require(maxQueued > 0, "The server needs room for at least one queued request.");
    require(replyBuffer >= LeastReplyBuffer,
            "A reply's buffer needs at least " + std::to_string(LeastReplyBuffer) + " bytes.");
    for (const auto time : {headTime, bodyTime, replyTime, patience})
        require(time > 0ms && time <= MaxTime, "Every time limit must be positive.");
    require(drain >= 0ms && drain <= MaxTime, "The drain time must not be negative.");

    const std::size_t share = MemoryBudget::shareOf(memory);
    require(replyBuffer <= share && decodeFactor < std::numeric_limits<std::size_t>::max() / 2 &&
                maxBody <= (share - replyBuffer) / (decodeFactor + 1),
            "The server's memory of " + std::to_string(memory) +
                " bytes is too small: three quarters of it must hold a body of " +
                std::to_string(maxBody) + " bytes, " + std::to_string(decodeFactor) +
                " times as much to decode it, and a reply's buffer of " +
                std::to_string(replyBuffer) + " bytes.");
}

} // namespace quillet::rds
