#pragma once

#include "db/Clock.h"
#include "rds/CallServer.h"

#include <iosfwd>
#include <mutex>
#include <string>
#include <string_view>

namespace quillet::headoffice {

/// One line per call:
/// `2024-05-01 12:00:00 127.0.0.1:50012 quorin.data.Getsql 12 rows, 3 ms, 4567 bytes`.
/// May be written to from several threads.
class RequestLog {
public:
    explicit RequestLog(std::ostream& out, db::Clock clock = db::localNow);

    void write(const rds::CallRecord& record);

private:
    std::ostream& out_;
    db::Clock clock_;
    std::mutex mutex_;
};

/// The text on one line and without passwords: control characters become blanks, the values of
/// `PWD=` and `PASSWORD=` stars.
std::string withoutSecrets(std::string_view text);

} // namespace quillet::headoffice
