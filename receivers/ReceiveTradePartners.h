#pragma once

#include "sync/Run.h"

namespace quillet::receivers {

/// Brings the trade partners that have changed since the members' stamp. Unlike members they have
/// no trailing blanks, and a Null among end flag, points and visits fails the receive.
/// @return the receive result flag.
[[nodiscard]] bool ReceiveTradePartners(sync::Run& run);

} // namespace quillet::receivers
