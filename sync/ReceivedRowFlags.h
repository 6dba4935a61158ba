#pragma once

#include "sync/Run.h"

namespace quillet::sync {

/// The received-row flags let a run remove course, set and option menu rows that the head office
/// no longer sends. Between runs every row of `PRC`, `PRS` and `PRO` is marked '9'; receivers write
/// '1' into each row that they insert or update; what is still '9' after a run was not sent.

/// Adds the flag columns to the store, once per user profile: the date it is done is saved whatever
/// the statements' outcome, and a table that already has its column is passed over.
void MigrateFlagColumns(Run& run);

/// Deletes the rows that the run did not mark and marks the others '9' for the next one, all or
/// nothing. A failure is in the download log; the rows then go with the next sweep.
///
/// Deliberately looks at no checkbox: after a run without the menu group, every marked row goes.
/// Set menus are left alone while the store skips them.
void SweepReceivedRows(Run& run);

} // namespace quillet::sync
