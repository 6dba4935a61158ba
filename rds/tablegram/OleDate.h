#pragma once

#include "data/Value.h"

#include <cstdint>

namespace quillet::rds {

/// An OLE Automation date, days since 1899-12-30, as a date-time, to the millisecond. The
/// fraction is the time of day and counts forward before that day too: -1.5 is 1899-12-29 12:00.
/// @throws data::Error 6 (overflow) outside of the years 100 to 9999.
data::DateTime dateTimeOfOleDate(double value);

/// @throws data::Error 6 when the date does not exist.
double oleDateOf(const data::DateTime& value);

/// A FILETIME, 100 nanoseconds since 1601-01-01.
/// @throws data::Error 6 behind the year 9999.
data::DateTime dateTimeOfFileTime(std::uint64_t ticks);

/// @throws data::Error 6 when the date does not exist or is before 1601.
std::uint64_t fileTimeOf(const data::DateTime& value);

} // namespace quillet::rds
