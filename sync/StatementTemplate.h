#pragma once

#include "sync/ServerRow.h"

#include <cstddef>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quillet::sync {

/// A store statement with places for the fields of a server row, so that a receiver's statement
/// can be read beside the columns that it fills.
///
///     {3}      field 3 as text, exactly as received: no escaping of any kind. A quote in it breaks
///              the statement, which then fails and rolls its whole batch back.
///     {#3}     field 3 by the leading-number rule, as plain decimal text
///     {name}   a text that the receiver computes itself, given by render()'s second argument
///
/// Everything else stands as written, blanks included.
class StatementTemplate {
public:
    /// @param pattern must outlive the template.
    /// @param names of the computed texts, in the order in which render() gets them.
    explicit StatementTemplate(std::string_view pattern,
                               std::initializer_list<std::string_view> names = {});

    /// @throws db::Error 94 for a Null where a number stands.
    std::string render(const ServerRow& row, std::span<const std::string_view> computed = {}) const;

private:
    enum class Kind : unsigned char { Literal, Text, Number, Computed };
    struct Piece {
        Kind kind;
        std::string_view literal;
        std::size_t index = 0; ///< field, or computed text
    };

    static Piece place(std::string_view name, std::initializer_list<std::string_view> names);

    std::vector<Piece> pieces_;
    std::size_t literalSize_ = 0;
};

} // namespace quillet::sync
