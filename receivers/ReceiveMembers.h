#pragma once

#include "sync/Run.h"

namespace quillet::receivers {

/// Brings the members that have changed since their stamp. A Null among points and visits counts
/// as 0.
///
/// Which texts are stored with a blank behind them deliberately differs between the three
/// statements, and the handled-row counter deliberately never moves.
/// @return the receive result flag.
[[nodiscard]] bool ReceiveMembers(sync::Run& run);

} // namespace quillet::receivers
