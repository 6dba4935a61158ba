#pragma once

#include "sync/Run.h"

namespace quillet::receivers {

/// Copies the store's availability records that have changed since the menu's stamp, or exactly at
/// it, onto the visibility of the store's products. Looks nothing up: a product that the store does
/// not have is an update that changes no row.
/// @return the receive result flag.
[[nodiscard]] bool ReceiveAvailability(sync::Run& run);

} // namespace quillet::receivers
