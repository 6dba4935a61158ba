#pragma once

#include <string_view>

namespace quillet::headoffice {

/// Whether a statement is a query and nothing else: one SELECT (or WITH ... SELECT), without
/// results that go into a file or a variable, locks, files of the server and comments that the
/// server obeys.
///
/// It stands beside the read-only transaction in which queries run, because a statement can end
/// that: `BEGIN NOT ATOMIC COMMIT; ... END` is a single one.
/// @throws data::Error number::CommandText with a sentence for the caller.
void requireQuery(std::string_view statement);

} // namespace quillet::headoffice
