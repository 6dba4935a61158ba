#pragma once

#include "sync/Run.h"

namespace quillet::receivers {

/// Brings the options that may be chosen with a product, of products that are not discontinued and
/// whose category the stores show, and marks them received. Product and option are looked up as one
/// text, as course menus are.
/// @return the receive result flag.
[[nodiscard]] bool ReceiveOptionMenus(sync::Run& run);

} // namespace quillet::receivers
