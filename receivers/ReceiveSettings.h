#pragma once

#include "sync/Run.h"

namespace quillet::receivers {

/// Settings come from two server tables into the store table `BAS`, with the same statements: for a
/// code that both have, whoever is written later wins. Every value is stored with one blank behind
/// it, also the code of a new one; it is looked up without. Nothing is deleted.

/// Brings the head office's common settings that have changed since the settings' stamp.
/// @return the receive result flag.
[[nodiscard]] bool ReceiveGlobalSettings(sync::Run& run);

/// Brings this store's own settings that have changed since the run's stamp for them, which is
/// older than the settings' one where some are still owed. They are written on their own after a
/// run, so this one starts by emptying the statement array.
/// @return the receive result flag.
[[nodiscard]] bool ReceiveStoreSettings(sync::Run& run);

} // namespace quillet::receivers
