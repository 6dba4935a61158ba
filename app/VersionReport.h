#pragma once

#include "sync/Run.h"

#include <string>

namespace quillet::app {

/// Tells the head office which version this counter receives with.
/// @return whether the head office took it, also when it knows no such counter. Any error is false.
[[nodiscard]] bool ReportReceiveVersion(sync::Run& run, const std::string& version) noexcept;

} // namespace quillet::app
