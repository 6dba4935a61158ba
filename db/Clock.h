#pragma once

#include "db/Value.h"

#include <functional>
#include <string>

namespace quillet::db {

/// Where the local date and time come from; tests put their own in.
using Clock = std::function<DateTime()>;

/// The machine's local date and time, to the second.
DateTime localNow();

/// "YYYY-MM-DD HH:MM:SS".
std::string dateTimeText(const DateTime& value);

} // namespace quillet::db
