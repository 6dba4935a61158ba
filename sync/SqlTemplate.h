#pragma once

#include "sync/QuoteGuard.h"
#include "sync/ServerRow.h"

#include <cstddef>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quillet::sync {

/// A store statement, or a look-up's criteria, with places for the fields of a server row, so that
/// a receiver's texts can be read beside the columns that they fill.
///
///     {3}      field 3 as text, exactly as received: no escaping of any kind. A quote in it breaks
///              the statement, which then fails and rolls its whole batch back; where further
///              quotes would make another statement of it, there is none (QuoteGuard).
///     {trim 3} the same without leading and trailing blanks
///     {#3}     field 3 by the leading-number rule, as plain decimal text; Null is an error
///     {#3?}    the same, but Null is 0
///     {name}   a text that the receiver computes itself, given by render()'s second argument
///
/// Everything else stands as written, blanks included.
class SqlTemplate {
public:
    SqlTemplate() = default; ///< renders to nothing

    /// @param names of the computed texts, in the order in which render() gets them.
    explicit SqlTemplate(std::string_view pattern,
                         std::initializer_list<std::string_view> names = {});

    /// What stands in front of the first place.
    std::string_view opening() const;

    /// @throws data::Error 94 for a Null where a number stands; number::CommandText where quotes in
    ///         texts, computed ones included, would make another statement of it.
    std::string render(const ServerRow& row, std::span<const std::string_view> computed = {}) const;

    /// Renders a look-up's criteria, of which Find() itself refuses what it cannot take.
    std::string renderCriteria(const ServerRow& row) const;

    /// The same, for a template without computed texts.
    std::string operator()(const ServerRow& row) const { return render(row); }

private:
    enum class Kind : unsigned char { Literal, Text, Trimmed, Number, NumberOrZero, Computed };
    struct Piece {
        Kind kind;
        std::string literal;
        std::size_t index = 0; ///< field, or computed text
    };

    std::string compose(const ServerRow& row, std::span<const std::string_view> computed,
                        QuoteGuard& guard) const;
    static Piece place(std::string_view name, std::initializer_list<std::string_view> names);

    std::vector<Piece> pieces_;
    std::size_t literalSize_ = 0;
};

} // namespace quillet::sync
