#include "rds/http/Deadline.h"

#include <boost/asio/error.hpp>

#include <utility>

namespace quillet::rds {

Deadline::Deadline(const boost::asio::ip::tcp::socket::executor_type& executor,
                   std::function<void()> reached)
    : timer_(executor), reached_(std::move(reached)) {}

void Deadline::set(Clock::time_point when, std::shared_ptr<void> keeper) {
    when_ = when;
    if (running_ ? when >= timer_.expiry() : when == Never)
        return; // timerEnded() looks again
    running_ = true;
    timer_.expires_at(when);
    timer_.async_wait([this, keeper = std::move(keeper)](boost::system::error_code error) {
        if (error != boost::asio::error::operation_aborted)
            timerEnded(keeper);
    });
}

void Deadline::cancel() {
    when_ = Never;
    timer_.cancel();
}

void Deadline::timerEnded(std::shared_ptr<void> keeper) {
    running_ = false;
    if (Clock::now() < when_)
        set(when_, std::move(keeper));
    else
        reached_();
}

} // namespace quillet::rds
