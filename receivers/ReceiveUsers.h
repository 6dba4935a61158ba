#pragma once

#include "sync/Run.h"

namespace quillet::receivers {

/// Brings the people of this store's staff who may use the point of sale, all of them on every run.
/// What the counter knows of a user itself (id, password, levels, whether shown) is written for new
/// users only. Who has left stays in the store.
/// @return the receive result flag.
[[nodiscard]] bool ReceiveUsers(sync::Run& run);

} // namespace quillet::receivers
