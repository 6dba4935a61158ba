#pragma once

#include "sync/Run.h"

#include <string>
#include <string_view>

namespace quillet::sync {

/// Reads the price option and its mode from the head office's settings row `ZO01`. The option is
/// empty when there is no such row; the mode then keeps its value.
/// @param title under which a failure goes to the download log.
/// @return false after a run-time error: prices chosen by a wrong option must never be written.
[[nodiscard]] bool ReadSettingsFlags(Run& run, std::string_view title);

/// The text of the store's set-menu setting, or "" when the store has none.
/// @throws data::Error when it cannot be read.
std::string ReadSetMenuSetting(Run& run);

} // namespace quillet::sync
