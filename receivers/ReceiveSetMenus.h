#pragma once

#include "sync/Run.h"

namespace quillet::receivers {

/// Brings the items of all sets and marks them received. Without the head office's price option: of
/// products on sale. With it: of products that this store has a price row of and that are not
/// discontinued, once per price row. Product and item are looked up as one text, as course menus
/// are.
/// @return the receive result flag.
[[nodiscard]] bool ReceiveSetMenus(sync::Run& run);

} // namespace quillet::receivers
