#pragma once

#include "sync/Run.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace quillet::sync {

/// The update stamps make receiving incremental: per data group the server's time of the last run
/// that received it, kept in the single row of the store table `UPD`.

/// The columns of `UPD`, in the order of the groups.
using Stamps = std::array<std::string, Groups>;

/// The store's stamps; none when `UPD` has no row, or cannot be read: ask Status().
std::optional<Stamps> storedStamps(db::VelkDBPro& store);

/// Reads the stamps into the run. A store without a row leaves them empty, and its next stamp
/// statement is an INSERT.
void ReadStamps(Run& run);

/// Appends the statement that stores the server's current time for the ticked groups.
///
/// The UPDATE deliberately joins the unticked groups' empty items too, so that a later run with
/// only some groups ticked carries consecutive commas and fails as a whole.
/// @param title under which a failure goes to the download log.
/// @return false after a run-time error; nothing is appended then.
[[nodiscard]] bool QueueStamps(Run& run, const Ticks& ticked, std::string_view title);

} // namespace quillet::sync
