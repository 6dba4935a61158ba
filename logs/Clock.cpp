#include "logs/Clock.h"

#include <ctime>
#include <mutex>

namespace quillet::logs {

data::DateTime localNow() {
    // std::localtime shares one buffer; the head office's threads come here too.
    static std::mutex mutex;
    const std::lock_guard lock(mutex);
    const std::time_t now = std::time(nullptr);
    const std::tm* local = std::localtime(&now);
    data::DateTime result;
    result.year = static_cast<std::int16_t>(local->tm_year + 1900);
    result.month = static_cast<std::uint8_t>(local->tm_mon + 1);
    result.day = static_cast<std::uint8_t>(local->tm_mday);
    result.hour = static_cast<std::uint8_t>(local->tm_hour);
    result.minute = static_cast<std::uint8_t>(local->tm_min);
    result.second = static_cast<std::uint8_t>(local->tm_sec);
    return result;
}

std::string dateTimeText(const data::DateTime& value) {
    return data::Value::dateTime(value).toText();
}

} // namespace quillet::logs
