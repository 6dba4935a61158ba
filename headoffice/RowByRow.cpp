#include "headoffice/RowByRow.h"

#include "db/AsciiText.h"
#include "db/ConnectionString.h"

#include <charconv>
#include <cstdint>
#include <string_view>

namespace quillet::headoffice {

namespace {

constexpr std::uint32_t NoCache = 1048576;
constexpr std::uint32_t ForwardCursor = 2097152;

bool knowsTheOption(std::string_view driver) {
    for (std::size_t i = 0; i < driver.size(); ++i) {
        if (db::startsWithIgnoringCase(driver.substr(i), "MySQL") ||
            db::startsWithIgnoringCase(driver.substr(i), "MariaDB"))
            return true;
    }
    return false;
}

} // namespace

std::string readingRowByRow(const std::string& connectionString) {
    const db::ConnectionString parts(connectionString);
    if (!knowsTheOption(parts.value("DRIVER")))
        return connectionString;
    const std::string text = parts.value("OPTION");
    std::uint32_t option = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), option);
    if (!text.empty() && (error != std::errc() || end != text.data() + text.size()))
        return connectionString;
    option |= NoCache | ForwardCursor;
    // In front, where no value that lacks its closing brace can swallow it.
    return "OPTION=" + std::to_string(option) + ";" + parts.without("OPTION");
}

} // namespace quillet::headoffice
