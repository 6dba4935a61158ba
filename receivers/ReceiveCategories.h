#pragma once

#include "sync/Run.h"

namespace quillet::receivers {

/// Brings the head office's menu categories into the store table `KIND`, all of them on every run.
///
/// When the menu has never been received (no stamp), the store's menu tables are emptied first,
/// at once and outside the run's transaction.
/// @return the receive result flag.
[[nodiscard]] bool ReceiveCategories(sync::Run& run);

} // namespace quillet::receivers
