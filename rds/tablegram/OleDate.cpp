#include "rds/tablegram/OleDate.h"

#include "data/Error.h"

#include <chrono>
#include <cmath>

namespace quillet::rds {

namespace {

using std::chrono::days;
using std::chrono::sys_days;

constexpr sys_days OleEpoch = std::chrono::year(1899) / 12 / 30;
constexpr sys_days FileTimeEpoch = std::chrono::year(1601) / 1 / 1;
constexpr std::int64_t NanosecondsPerDay = 86'400'000'000'000;

[[noreturn]] void failOverflow() {
    throw data::Error(data::number::Overflow, "A date is out of range.");
}

/// @param nanoseconds of the day, less than a day.
data::DateTime compose(sys_days day, std::int64_t nanoseconds) {
    const std::chrono::year_month_day date(day);
    data::DateTime value;
    value.year = static_cast<std::int16_t>(static_cast<int>(date.year()));
    value.month = static_cast<std::uint8_t>(static_cast<unsigned>(date.month()));
    value.day = static_cast<std::uint8_t>(static_cast<unsigned>(date.day()));
    const std::int64_t seconds = nanoseconds / 1'000'000'000;
    value.hour = static_cast<std::uint8_t>(seconds / 3600);
    value.minute = static_cast<std::uint8_t>(seconds / 60 % 60);
    value.second = static_cast<std::uint8_t>(seconds % 60);
    value.nanosecond = static_cast<std::uint32_t>(nanoseconds % 1'000'000'000);
    return value;
}

sys_days dayOf(const data::DateTime& value) {
    const std::chrono::year_month_day date{std::chrono::year(value.year),
                                           std::chrono::month(value.month),
                                           std::chrono::day(value.day)};
    if (!date.ok())
        failOverflow();
    return date;
}

std::int64_t nanosecondsOf(const data::DateTime& value) {
    const std::int64_t seconds = (value.hour * 60 + value.minute) * 60 + value.second;
    return seconds * 1'000'000'000 + value.nanosecond;
}

} // namespace

data::DateTime dateTimeOfOleDate(double value) {
    constexpr double First = -657434;  // 0100-01-01
    constexpr double Behind = 2958466; // 10000-01-01
    // Until half a millisecond before, beyond which it would be rounded to that day.
    if (!(value > First - 1 && value < Behind - 0.5 / 86'400'000))
        failOverflow();
    constexpr std::int64_t MillisecondsPerDay = 86'400'000;
    double whole = 0;
    const double fraction = std::fabs(std::modf(value, &whole));
    std::int64_t milliseconds = std::llround(fraction * static_cast<double>(MillisecondsPerDay));
    sys_days day = OleEpoch + days(static_cast<int>(whole));
    if (milliseconds == MillisecondsPerDay) {
        milliseconds = 0;
        day += days(1);
    }
    return compose(day, milliseconds * 1'000'000);
}

double oleDateOf(const data::DateTime& value) {
    // A leap second ends in the next day.
    const std::int64_t nanoseconds = nanosecondsOf(value);
    const double whole =
        static_cast<double>((dayOf(value) - OleEpoch).count() + nanoseconds / NanosecondsPerDay);
    const double fraction = static_cast<double>(nanoseconds % NanosecondsPerDay) /
                            static_cast<double>(NanosecondsPerDay);
    return whole < 0 ? whole - fraction : whole + fraction;
}

data::DateTime dateTimeOfFileTime(std::uint64_t ticks) {
    constexpr std::uint64_t TicksPerDay = 864'000'000'000;
    constexpr std::uint64_t LastDay = 3'067'670; // 9999-12-31
    const std::uint64_t day = ticks / TicksPerDay;
    if (day > LastDay)
        failOverflow();
    return compose(FileTimeEpoch + days(static_cast<int>(day)),
                   static_cast<std::int64_t>(ticks % TicksPerDay * 100));
}

std::uint64_t fileTimeOf(const data::DateTime& value) {
    const auto day = (dayOf(value) - FileTimeEpoch).count();
    if (day < 0)
        failOverflow();
    return static_cast<std::uint64_t>(day) * 864'000'000'000U +
           static_cast<std::uint64_t>(nanosecondsOf(value)) / 100U;
}

} // namespace quillet::rds
