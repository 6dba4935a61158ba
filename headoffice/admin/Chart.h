#pragma once

#include "headoffice/admin/Activity.h"

#include <array>
#include <cstdint>
#include <string>

namespace quillet::headoffice::admin {

/// The last hour as SVG elements for an HTML page; their classes are in AdminStyle. What they show
/// is told apart by form too, not by colour alone. The numbers themselves belong into a table.

/// Calls per minute: bars, the failed ones hatched at the foot and marked with a cross above.
std::string callsChart(const std::array<Activity::Minute, 60>& minutes);

/// How long calls took: the longest of each minute as a bar, the mean as a line.
std::string durationChart(const std::array<Activity::Minute, 60>& minutes);

/// "1,234".
std::string grouped(std::uint64_t number);

/// "850 ms", "1.2 s", "12.5 min", "20 h".
std::string durationText(std::chrono::milliseconds duration);

} // namespace quillet::headoffice::admin
