#include "rds/http/ReplyHead.h"

#include "data/Error.h"

#include <boost/beast/http/status.hpp>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>

namespace quillet::rds {

namespace {

namespace http = boost::beast::http;

constexpr const char* RetryAfter = "5"; // seconds

void require(bool condition, std::string_view header) {
    if (!condition)
        throw data::Error(data::number::InvalidArgument,
                          "'" + std::string(header) + "' does not fit into a reply's head.");
}

void appendHeader(std::string& headers, std::string_view name, std::string_view value) {
    const auto isControl = [](char c) { return static_cast<unsigned char>(c) < ' ' || c == 0x7F; };
    require(!name.empty() &&
                std::ranges::none_of(name,
                                     [&](char c) { return isControl(c) || c == ' ' || c == ':'; }),
            name);
    require(std::ranges::none_of(value, isControl), name);
    headers.append(name).append(": ").append(value).append("\r\n");
}

std::string httpDate() {
    using namespace std::chrono;
    static constexpr std::array Days{"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    static constexpr std::array Months{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                       "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    const auto now = floor<seconds>(system_clock::now());
    const auto today = floor<days>(now);
    const year_month_day date(today);
    const hh_mm_ss time(now - today);
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%s, %02u %s %04d %02d:%02d:%02d GMT",
                  Days[weekday(today).c_encoding()], static_cast<unsigned>(date.day()),
                  Months[static_cast<unsigned>(date.month()) - 1], static_cast<int>(date.year()),
                  static_cast<int>(time.hours().count()), static_cast<int>(time.minutes().count()),
                  static_cast<int>(time.seconds().count()));
    return text.data();
}

} // namespace

std::string replyHead(unsigned status, const std::string& moreHeaders) {
    const auto reason = http::obsolete_reason(http::int_to_status(status));
    std::string head = "HTTP/1.1 " + std::to_string(status) + ' ';
    head.append(reason.data(), reason.size());
    return head + "\r\nServer: Quillet\r\nDate: " + httpDate() + "\r\n" + moreHeaders +
           "Connection: close\r\n\r\n";
}

std::string errorReply(unsigned status, std::string_view text) {
    std::string headers = "Content-Type: text/plain; charset=utf-8\r\nContent-Length: " +
                          std::to_string(text.size() + 1) + "\r\n";
    if (status == 405)
        headers += "Allow: POST\r\n";
    if (status == 503)
        appendHeader(headers, "Retry-After", RetryAfter);
    std::string reply = replyHead(status, headers);
    reply += text;
    return reply + '\n';
}

std::string pageHead(unsigned status, std::string_view contentType, std::size_t bodySize,
                     const HttpReply::Headers& more) {
    std::string headers;
    if (!contentType.empty())
        appendHeader(headers, "Content-Type", contentType);
    appendHeader(headers, "Content-Length", std::to_string(bodySize));
    appendHeader(headers, "Cache-Control", "no-store");
    for (const auto& [name, value] : more)
        appendHeader(headers, name, value);
    return replyHead(status, headers);
}

} // namespace quillet::rds
