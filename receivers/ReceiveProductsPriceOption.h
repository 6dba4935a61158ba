#pragma once

#include "sync/Run.h"

namespace quillet::receivers {

/// Brings products with the prices that the head office's price option chooses: the store's own
/// price and its date where there is one other than 0, else the product's date and, in mode 1, its
/// list price. In any other mode products without a price row of this store are left out.
///
/// The date test is inclusive: what is stamped exactly as the last receive comes again.
/// @return the receive result flag.
[[nodiscard]] bool ReceiveProductsPriceOption(sync::Run& run);

} // namespace quillet::receivers
