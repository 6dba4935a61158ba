#pragma once

#include "sync/Run.h"

namespace quillet::receivers {

/// Brings products with the store's own prices: those with a price row of this store that has
/// changed since the menu's stamp. No run calls it; the driver can be pointed at it.
/// @return the receive result flag.
[[nodiscard]] bool ReceiveProductsStorePrice(sync::Run& run);

} // namespace quillet::receivers
