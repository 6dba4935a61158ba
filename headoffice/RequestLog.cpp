#include "headoffice/RequestLog.h"

#include "data/AsciiText.h"

#include <algorithm>
#include <cstddef>
#include <ostream>
#include <utility>

namespace quillet::headoffice {

namespace {

/// The length of a connection string's value at the start of a text: up to ";", or in braces.
std::size_t valueLength(std::string_view text) {
    std::size_t end = 0;
    if (text.starts_with('{')) {
        end = text.find('}', 1);
        while (end != std::string_view::npos && text.substr(end + 1).starts_with('}'))
            end = text.find('}', end + 2);
    }
    return std::min(text.find(';', std::min(end, text.size())), text.size());
}

} // namespace

RequestLog::RequestLog(std::ostream& out, logs::Clock clock)
    : out_(out), clock_(std::move(clock)) {}

void RequestLog::write(const rds::CallRecord& record) {
    std::string line = record.peer + ' ' + record.target + ' ';
    if (!record.summary.empty())
        line += record.summary + ", ";
    line +=
        std::to_string(record.elapsed.count()) + " ms, " + std::to_string(record.bytes) + " bytes";
    if (!record.error.empty())
        line += ", " + record.error;
    const std::lock_guard lock(mutex_);
    write(line);
}

void RequestLog::refused(std::string_view reason, const std::string& peer) {
    const std::lock_guard lock(mutex_);
    const auto now = std::chrono::steady_clock::now();
    const auto [entry, isNew] = refused_.try_emplace(std::string(reason));
    Refused& latest = entry->second;
    if (!isNew && now - latest.last < std::chrono::seconds(1)) {
        ++latest.unsaid;
        return;
    }
    std::string line = peer + " refused: " + std::string(reason);
    if (latest.unsaid > 0)
        line += ", and " + std::to_string(latest.unsaid) + " more since the last one";
    latest = {now, 0};
    write(line);
}

void RequestLog::write(const std::string& line) {
    out_ << logs::dateTimeText(clock_()) << ' ' << withoutSecrets(line) << std::endl;
}

std::string withoutSecrets(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        bool masked = false;
        for (const std::string_view key : {"PWD=", "PASSWORD="}) {
            if (!data::equalIgnoringCase(text.substr(0, key.size()), key))
                continue;
            result += text.substr(0, key.size());
            result += "***";
            text.remove_prefix(key.size());
            text.remove_prefix(valueLength(text));
            masked = true;
        }
        if (masked)
            continue;
        const auto c = static_cast<unsigned char>(text.front());
        result += c < ' ' || c == 0x7F ? ' ' : text.front();
        text.remove_prefix(1);
    }
    return result;
}

} // namespace quillet::headoffice
