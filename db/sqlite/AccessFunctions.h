#pragma once

struct sqlite3;

namespace quillet::db {

/// Gives an SQLite connection the functions that translated Access statements call:
///
///   - `access_plus(a, b)`: Null when one of them is; two texts joined; otherwise the sum, for
///   which
///     a text counts when it reads as a number whole and is an error when it does not;
///   - `access_join(a, b)`: both as texts, joined, a Null as an empty one.
///
/// @throws Error when there is no memory for them.
void addAccessFunctions(sqlite3* database);

} // namespace quillet::db
