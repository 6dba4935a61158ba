#include "sync/QuoteGuard.h"

#include "data/Error.h"
#include "sync/StatementSubject.h"

#include <algorithm>

namespace quillet::sync {

void QuoteGuard::look(std::string_view text) {
    quoteSeen_ = true;
    otherMarks_ = otherMarks_ || text.find_first_of("[]\"`") != std::string_view::npos;
    while (!text.empty()) {
        text.remove_prefix(std::min(text.find('\''), text.size()));
        const std::size_t run = std::min(text.find_first_not_of('\''), text.size());
        undoubled_ += run % 2;
        text.remove_prefix(run);
    }
}

void QuoteGuard::refuse(std::string_view statement) {
    throw data::Error(data::number::CommandText,
                      "What is behind a quote in a received text would be run as a statement's: " +
                          statementSubject(statement));
}

} // namespace quillet::sync
