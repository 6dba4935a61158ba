#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace quillet::sync {

/// What may be seen of a failed statement: what is received about people (names, telephone numbers,
/// the PIN of a user of the counter) belongs neither on a screen nor on its photograph.

/// Which row a store statement is about, at most 60 characters: "USR  USR_CODE = '0012'".
///
///     INSERT  the table, and the first of the columns with its value
///     UPDATE  the table, and the condition behind the last WHERE
///     DELETE  the same
///
/// Of a value that holds a quote only what stands before the quote, of any other text only its
/// first word. No other value is ever part of it, whatever quotes have made of the statement.
std::string statementSubject(std::string_view statement);

/// A database's words about a statement that it refused, without those that it quotes from the
/// statement: from the first quote mark to the last there is one "…". What is behind the last goes
/// as well where it does not look like the database's own words (a digit, a letter that is not
/// ASCII, a letter right behind the mark): a driver may have cut its text in the middle of a value.
std::string withoutQuotations(std::string_view error);

/// The beginning of a UTF-8 text, and "…" where it has more than so many characters.
std::string elided(std::string_view text, std::size_t characters);

} // namespace quillet::sync
