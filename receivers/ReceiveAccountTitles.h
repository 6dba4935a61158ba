#pragma once

#include "sync/Run.h"

namespace quillet::receivers {

/// Brings the account titles that have changed since their stamp. The store's key is the two code
/// levels in one text, without a separator: pairs that read the same are one.
/// @return the receive result flag.
[[nodiscard]] bool ReceiveAccountTitles(sync::Run& run);

} // namespace quillet::receivers
