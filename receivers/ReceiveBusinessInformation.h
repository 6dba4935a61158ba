#pragma once

#include "sync/Run.h"

namespace quillet::receivers {

/// Copies the store's particulars into the rows '회사' of the store's configuration, which must be
/// there: none is created. A particular that is missing is written as a blank, so that what the
/// head office clears is cleared here too; a registration number without a digit other than 0
/// leaves the store's own.
/// @return the receive result flag.
[[nodiscard]] bool ReceiveBusinessInformation(sync::Run& run);

} // namespace quillet::receivers
