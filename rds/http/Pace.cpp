#include "rds/http/Pace.h"

namespace quillet::rds {

void Pace::moved(std::size_t bytes) {
    if (leastBytes_ == 0 || bytes == 0)
        return;
    const auto now = Clock::now();
    if (!begun_)
        begun_ = now;
    latest_.push_back({now, bytes});
    bytes_ += bytes;
    while (bytes_ - latest_.front().bytes >= leastBytes_) {
        bytes_ -= latest_.front().bytes;
        latest_.pop_front();
    }
}

Pace::Clock::time_point Pace::deadline() const {
    if (!begun_)
        return firstByte_;
    return (bytes_ >= leastBytes_ ? latest_.front().when : *begun_) + window_;
}

} // namespace quillet::rds
