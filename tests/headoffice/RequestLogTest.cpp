#include "headoffice/RequestLog.h"

#include <gmock/gmock.h>

#include <sstream>
#include <string>

namespace {

using namespace quillet;

TEST(RequestLog, WritesOneLineWithoutPasswords) {
    std::ostringstream out;
    headoffice::RequestLog log(out, [] { return data::DateTime{2024, 5, 1, 9, 8, 7, 0}; });
    rds::CallRecord record;
    record.peer = "127.0.0.1:50012";
    record.target = "quorin.data.Getsql";
    record.summary = "12 rows";
    record.elapsed = std::chrono::milliseconds(3);
    record.bytes = 4567;
    log.write(record);
    record.summary.clear();
    record.error = "error 1: bad\r\nPWD=x;uid=y";
    log.write(record);
    EXPECT_EQ(out.str(),
              "2024-05-01 09:08:07 127.0.0.1:50012 quorin.data.Getsql 12 rows, 3 ms, 4567 bytes\n"
              "2024-05-01 09:08:07 127.0.0.1:50012 quorin.data.Getsql "
              "3 ms, 4567 bytes, error 1: bad  PWD=***;uid=y\n");

    EXPECT_EQ(headoffice::withoutSecrets("a;pwd={p;}}q};b;Password=r"), "a;pwd=***;b;Password=***");
    EXPECT_EQ(headoffice::withoutSecrets("PWD={open;b"), "PWD=***");
}

} // namespace
