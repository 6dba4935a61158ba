#pragma once

#include "data/Value.h"

#include <functional>
#include <string>

namespace quillet::logs {

/// Where the local date and time come from; tests put their own in.
using Clock = std::function<data::DateTime()>;

/// The machine's local date and time, to the second.
data::DateTime localNow();

/// "YYYY-MM-DD HH:MM:SS".
std::string dateTimeText(const data::DateTime& value);

} // namespace quillet::logs
