#pragma once

// Internal to the server: it brings Boost with it.

#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>

#include <chrono>
#include <functional>
#include <memory>

namespace quillet::rds {

/// A point in time that is moved often and reached seldom. The timer behind it is set anew only
/// when the point comes nearer.
class Deadline {
public:
    using Clock = std::chrono::steady_clock;
    static constexpr Clock::time_point Never = Clock::time_point::max();

    /// @param reached is called when the point has been reached, once for each set().
    Deadline(const boost::asio::ip::tcp::socket::executor_type& executor,
             std::function<void()> reached);

    /// @param keeper keeps what `reached` needs alive until then.
    void set(Clock::time_point when, std::shared_ptr<void> keeper);

    void cancel();

private:
    void timerEnded(std::shared_ptr<void> keeper);

    boost::asio::steady_timer timer_;
    std::function<void()> reached_;
    Clock::time_point when_ = Never;
    bool running_ = false; ///< the timer
};

} // namespace quillet::rds
