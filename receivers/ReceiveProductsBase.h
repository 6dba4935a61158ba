#pragma once

#include "sync/Run.h"

namespace quillet::receivers {

/// Brings products with their list prices, those that have changed since the menu's stamp; what is
/// stamped exactly as the last receive does not come again. A product whose category is gone comes
/// too.
/// @return the receive result flag.
[[nodiscard]] bool ReceiveProductsBase(sync::Run& run);

} // namespace quillet::receivers
