#pragma once

#include <cstddef>
#include <string_view>

namespace quillet::sync {

/// Received texts go into a statement between quotes, and exactly as they are. A quote in one ends
/// the text there (a doubled one does not), and what follows is read as a part of the statement: it
/// breaks, unless a further quote puts everything in order again, and then other columns are
/// written or other rows. This tells the two apart before anything runs.
///
/// Every quote that is not doubled turns what is text and what is not round. After an odd number of
/// them the statement ends inside a text, and no database takes it. Only a mark that is itself read
/// as an opening one could hide a quote from the count.
class QuoteGuard {
public:
    enum class Verdict {
        Fine,     ///< no quote that is not doubled
        Surfaces, ///< the statement cannot be run, and fails by itself
        Refused   ///< it might run, as another one
    };

    /// Takes the next of the statement's texts into account, in their order.
    void add(std::string_view text) {
        if (quoteSeen_ || text.find('\'') != std::string_view::npos)
            look(text);
    }

    Verdict verdict() const noexcept {
        if (undoubled_ == 0)
            return Verdict::Fine;
        return undoubled_ % 2 != 0 && !otherMarks_ ? Verdict::Surfaces : Verdict::Refused;
    }

    /// @throws data::Error number::CommandText, naming the statement's row, if it is refused.
    void require(std::string_view statement) const {
        if (verdict() == Verdict::Refused)
            refuse(statement);
    }

private:
    void look(std::string_view text);
    [[noreturn]] static void refuse(std::string_view statement);

    bool quoteSeen_ = false;
    bool otherMarks_ = false; ///< that open something, in or behind a text with a quote
    std::size_t undoubled_ = 0;
};

} // namespace quillet::sync
