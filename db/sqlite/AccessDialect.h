#pragma once

#include <string>

namespace quillet::db {

/// Translates a statement written for Access into SQLite's dialect.
///
///   - `a + b` joins texts and adds numbers, `a & b` joins anything; both bind as in Access, and a
///     Null makes a `+` Null while `&` takes it as an empty text;
///   - `"text"` is a text, never a name;
///   - there are no comments: `--` and `/*` outside a text are a syntax error, as is a text without
///     an end or a NUL byte, so that a quote inside a received value can never turn the rest of a
///     statement, its WHERE above all, into something that is not run.
///
/// The calls are those of AccessFunctions.h. Names in brackets, `IIF` and column types such as
/// `TEXT(1)` are SQLite's already.
///
/// @param buffer holds the result when there was something to translate.
/// @return `statement` itself, or `buffer`.
/// @throws Error 42000 for a syntax error.
const std::string& translateAccessSql(const std::string& statement, std::string& buffer);

} // namespace quillet::db
