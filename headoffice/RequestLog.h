#pragma once

#include "logs/Clock.h"
#include "rds/CallServer.h"

#include <chrono>
#include <cstddef>
#include <functional>
#include <iosfwd>
#include <map>
#include <mutex>
#include <string>
#include <string_view>

namespace quillet::headoffice {

/// One line per call:
/// `2024-05-01 12:00:00 127.0.0.1:50012 quorin.data.Getsql 12 rows, 3 ms, 4567 bytes`.
/// May be written to from several threads.
class RequestLog {
public:
    explicit RequestLog(std::ostream& out, logs::Clock clock = logs::localNow);

    void write(const rds::CallRecord& record);

    /// A client that got no further, at most once a second for each reason, so that nobody can fill
    /// the log by being refused: `2024-05-01 12:00:00 10.0.0.5:50012 refused: not allowed`.
    void refused(std::string_view reason, const std::string& peer);

private:
    struct Refused {
        std::chrono::steady_clock::time_point last;
        std::size_t unsaid = 0;
    };

    void write(const std::string& line);

    std::ostream& out_;
    logs::Clock clock_;
    std::mutex mutex_;
    std::map<std::string, Refused, std::less<>> refused_; ///< by reason
};

/// The text on one line and without passwords: control characters become blanks, the values of
/// `PWD=` and `PASSWORD=` stars.
std::string withoutSecrets(std::string_view text);

} // namespace quillet::headoffice
