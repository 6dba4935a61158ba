#include "headoffice/admin/LocalTime.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <ctime>

namespace {

using namespace quillet::headoffice::admin;

TEST(LocalTime, SaysItsZone) {
    const TimePoint time = std::chrono::sys_days(std::chrono::year(2024) / 5 / 1) +
                           std::chrono::hours(20) + std::chrono::milliseconds(7'900);
    const char* const before = std::getenv("TZ");
    const std::string zone = before == nullptr ? "" : before;
    const auto in = [&](const char* name) {
        ::setenv("TZ", name, 1);
        ::tzset();
        return isoText(time);
    };
    // The signs in TZ are the other way round.
    EXPECT_EQ(in("KST-9"), "2024-05-02T05:00:07+09:00");
    EXPECT_EQ(localText(time), "2024-05-02 05:00:07");
    EXPECT_EQ(in("NST3:30"), "2024-05-01T16:30:07-03:30");
    EXPECT_EQ(in("UTC0"), "2024-05-01T20:00:07+00:00");
    before == nullptr ? ::unsetenv("TZ") : ::setenv("TZ", zone.c_str(), 1);
    ::tzset();
}

} // namespace
