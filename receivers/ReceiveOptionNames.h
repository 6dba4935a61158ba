#pragma once

#include "sync/Run.h"

namespace quillet::receivers {

/// Brings the names of all options. Options that the head office no longer has stay in the store.
/// @return the receive result flag.
[[nodiscard]] bool ReceiveOptionNames(sync::Run& run);

} // namespace quillet::receivers
