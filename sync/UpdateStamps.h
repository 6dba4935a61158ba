#pragma once

#include "sync/Run.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace quillet::sync {

/// The update stamps make receiving incremental: per data group the server's time of the last run
/// that received it, kept in the single row of the store table `UPD`.

/// In the order of the groups.
using Stamps = std::array<std::string, Groups>;

/// The columns of `UPD` that hold them.
inline constexpr std::array<std::string_view, Groups> StampColumns{"UPD_PR", "UPD_CT", "UPD_USR",
                                                                   "UPD_BAS", "UPD_FN"};

/// The store's stamps; none when `UPD` has no row.
/// @throws data::Error when they cannot be read: a failed read is never taken for an empty one.
std::optional<Stamps> storedStamps(db::VelkDBPro& store);

/// Reads the stamps into the run. A store without a row leaves them empty, and its next stamp
/// statement is an INSERT.
/// @return false when they cannot be read: nothing may be received then. The download log and the
///         run's failure say why.
[[nodiscard]] bool ReadStamps(Run& run);

/// Appends the statement that stores the server's current time for the ticked groups.
///
/// The UPDATE deliberately joins the unticked groups' empty items too, so that a later run with
/// only some groups ticked carries consecutive commas and fails as a whole.
/// @param title under which a failure goes to the download log.
/// @return false after a run-time error; nothing is appended then.
[[nodiscard]] bool QueueStamps(Run& run, const Ticks& ticked, std::string_view title);

/// Makes the statement that QueueStamps() has appended leave the menu's stamp blank.
void LeaveMenuStampBlank(Run& run, const Ticks& ticked);

} // namespace quillet::sync
