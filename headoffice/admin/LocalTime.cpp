#include "headoffice/admin/LocalTime.h"

#include <array>

namespace quillet::headoffice::admin {

namespace {

std::string formatted(const std::tm& time, const char* format) {
    std::array<char, 32> text{};
    return {text.data(), std::strftime(text.data(), text.size(), format, &time)};
}

std::tm local(TimePoint time) {
    return localTime(std::chrono::system_clock::to_time_t(time));
}

} // namespace

std::string localText(TimePoint time) {
    return formatted(local(time), "%Y-%m-%d %H:%M:%S");
}

std::string localMinute(TimePoint time) {
    return formatted(local(time), "%H:%M");
}

std::string isoText(TimePoint time) {
    using namespace std::chrono;
    const std::tm fields = local(time);
    // %z would give the zone's name on Windows.
    const sys_days day = year(fields.tm_year + 1900) /
                         month(static_cast<unsigned>(fields.tm_mon) + 1) /
                         std::chrono::day(static_cast<unsigned>(fields.tm_mday));
    const auto asUtc =
        day + hours(fields.tm_hour) + minutes(fields.tm_min) + seconds(fields.tm_sec);
    const auto offset = duration_cast<minutes>(asUtc - floor<seconds>(time)).count();
    const auto ahead = static_cast<unsigned>(offset < 0 ? -offset : offset) % (24U * 60U);
    const auto twoDigits = [](unsigned number) {
        return std::string(number < 10 ? "0" : "") + std::to_string(number);
    };
    return formatted(fields, "%Y-%m-%dT%H:%M:%S") + (offset < 0 ? '-' : '+') +
           twoDigits(ahead / 60) + ':' + twoDigits(ahead % 60);
}

} // namespace quillet::headoffice::admin
