#pragma once

#include <chrono>
#include <ctime>
#include <functional>
#include <string>

namespace quillet::headoffice::admin {

/// To the second or finer; tests put their own clock in.
using TimePoint = std::chrono::system_clock::time_point;
using AdminClock = std::function<TimePoint()>;

/// The machine's local time, or midnight of 1970 for a time that it cannot express.
std::tm localTime(std::time_t time);

/// "2024-05-01 09:08:07", local.
std::string localText(TimePoint time);

/// "09:08", local.
std::string localMinute(TimePoint time);

/// ISO 8601 with the zone: "2024-05-01T09:08:07+09:00", local.
std::string isoText(TimePoint time);

} // namespace quillet::headoffice::admin
