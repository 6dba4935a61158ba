#pragma once

#include <chrono>
#include <cstddef>
#include <deque>
#include <optional>

namespace quillet::rds {

/// How slow the other side of a connection may be, in one direction.
class Pace {
public:
    using Clock = std::chrono::steady_clock;

    /// Ends after a time, whatever moves until then.
    explicit Pace(Clock::duration time) : firstByte_(Clock::now() + time) {}

    /// The first byte has until a point in time. From then on, so many bytes must move in every
    /// window of time, wherever it begins.
    Pace(Clock::time_point firstByte, std::size_t leastBytes, Clock::duration window)
        : firstByte_(firstByte), leastBytes_(leastBytes), window_(window) {}

    /// Notes bytes that have moved just now.
    void moved(std::size_t bytes);

    /// When it is too late, unless something moves until then.
    Clock::time_point deadline() const;

private:
    struct Move {
        Clock::time_point when;
        std::size_t bytes;
    };

    Clock::time_point firstByte_;
    std::size_t leastBytes_ = 0; ///< 0: no rate is asked for
    Clock::duration window_{0};
    std::optional<Clock::time_point> begun_;
    std::deque<Move> latest_; ///< as few of the latest moves as make leastBytes_
    std::size_t bytes_ = 0;   ///< of these
};

} // namespace quillet::rds
