#pragma once

#include <string_view>
#include <vector>

namespace quillet::headoffice {

/// A piece of an SQL statement.
struct SqlToken {
    enum class Kind : unsigned char {
        Word,   ///< a keyword, an unquoted name
        Name,   ///< in backquotes, which are not part of it
        Text,   ///< in single or double quotes, which are part of it
        Number, ///< digits, perhaps with a point
        Symbol, ///< any other byte
        Hint    ///< a comment that the server obeys: `/*! ... */`, `/*M! ... */`, `/*+ ... */`
    };

    Kind kind;
    std::string_view text;
};

/// Whether a backslash in a text escapes what follows: the server's SQL mode decides.
enum class Backslash : unsigned char { Escapes, IsPlain };

/// A statement's pieces, by the rules of MySQL and MariaDB; comments that mean nothing are left
/// out. What is not closed goes to the statement's end.
///
/// Source: MariaDB Knowledge Base, "Comment Syntax", "String Literals", "Identifier Names".
/// @return tokens that borrow from the statement.
std::vector<SqlToken> sqlTokens(std::string_view statement, Backslash backslash);

} // namespace quillet::headoffice
