#include "sync/StatementSubject.h"

#include "data/AsciiText.h"

#include <algorithm>
#include <optional>

namespace quillet::sync {

namespace {

constexpr std::size_t LongestSubject = 60;
constexpr std::string_view Ellipsis = "…";

bool isLetter(char c) {
    return data::upperAscii(c) >= 'A' && data::upperAscii(c) <= 'Z';
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/// Reads the parts of a statement that the program itself writes, one after the other.
class Scanner {
public:
    explicit Scanner(std::string_view text) : rest_(text) {}

    /// Letters, digits and underscores; nothing where there is something else.
    std::string_view name() {
        skipBlanks();
        const auto end = std::find_if_not(rest_.begin(), rest_.end(), [](char c) {
            return isLetter(c) || isDigit(c) || c == '_';
        });
        return take(static_cast<std::size_t>(end - rest_.begin()));
    }

    /// Whether this word comes next; it is taken if so.
    bool word(std::string_view wanted) {
        const Scanner before = *this;
        if (data::equalIgnoringCase(name(), wanted))
            return true;
        *this = before;
        return false;
    }

    bool mark(char wanted) {
        skipBlanks();
        if (!rest_.starts_with(wanted))
            return false;
        rest_.remove_prefix(1);
        return true;
    }

    /// A number, or a text up to the next quote, as "'text'".
    std::optional<std::string> value() {
        if (mark('\'')) {
            const std::size_t end = std::min(rest_.find('\''), rest_.size());
            std::string text(1, '\'');
            text.append(take(end)).append(1, '\'');
            mark('\'');
            return text;
        }
        const std::size_t end = std::min(rest_.find_first_not_of("+-.0123456789"), rest_.size());
        return end > 0 ? std::optional(std::string(take(end))) : std::nullopt;
    }

    /// Goes behind the next such mark.
    void skipTo(char wanted) {
        const std::size_t end = rest_.find(wanted);
        rest_.remove_prefix(end == std::string_view::npos ? rest_.size() : end + 1);
    }

private:
    void skipBlanks() { rest_.remove_prefix(std::min(rest_.find_first_not_of(' '), rest_.size())); }

    std::string_view take(std::size_t count) {
        const std::string_view taken = rest_.substr(0, count);
        rest_.remove_prefix(count);
        return taken;
    }

    std::string_view rest_;
};

/// "NAME = value", and every further one behind an AND.
std::string conditions(Scanner text) {
    std::string result;
    do {
        const std::string_view column = text.name();
        if (column.empty() || !text.mark('='))
            break;
        const auto value = text.value();
        if (!value)
            break;
        result.append(result.empty() ? "  " : " AND ").append(column).append(" = ").append(*value);
    } while (text.word("AND"));
    return result;
}

/// Behind "INSERT INTO TABLE": "(COLUMN, ...) VALUES (value" or "(COLUMN, ...) SELECT value".
std::string firstColumn(Scanner text) {
    if (!text.mark('('))
        return {};
    const std::string_view column = text.name();
    text.skipTo(')');
    if (column.empty() || !(text.word("SELECT") || (text.word("VALUES") && text.mark('('))))
        return {};
    const auto value = text.value();
    return value ? std::string("  ").append(column).append(" = ").append(*value) : std::string();
}

std::string lastWhere(std::string_view statement) {
    constexpr std::string_view Where = " WHERE ";
    const std::size_t where = statement.rfind(Where);
    return where == std::string_view::npos
               ? std::string()
               : conditions(Scanner(statement.substr(where + Where.size())));
}

} // namespace

std::string statementSubject(std::string_view statement) {
    Scanner scanner(statement);
    const std::string_view verb = scanner.name();
    std::string subject(verb);
    if (data::equalIgnoringCase(verb, "INSERT") && scanner.word("INTO")) {
        subject = scanner.name();
        subject += firstColumn(scanner);
    } else if (data::equalIgnoringCase(verb, "UPDATE") ||
               (data::equalIgnoringCase(verb, "DELETE") && scanner.word("FROM"))) {
        subject = scanner.name();
        subject += lastWhere(statement);
    }
    return elided(subject, LongestSubject);
}

std::string withoutQuotations(std::string_view error) {
    constexpr std::string_view QuoteMarks = "'\"`";
    const std::size_t first = error.find_first_of(QuoteMarks);
    if (first == std::string_view::npos)
        return std::string(error);
    const std::string_view tail = error.substr(error.find_last_of(QuoteMarks) + 1);
    const bool isItsOwn =
        (tail.empty() || !isLetter(tail.front())) &&
        std::all_of(tail.begin(), tail.end(), [](char c) {
            return isLetter(c) || std::string_view(" .,:;()").find(c) != std::string_view::npos;
        });
    std::string result(error.substr(0, first));
    result += Ellipsis;
    return isItsOwn ? result.append(tail) : result;
}

std::string elided(std::string_view text, std::size_t characters) {
    std::size_t end = 0;
    for (std::size_t count = 0; end < text.size(); ++end) {
        const bool continues = (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U;
        if ((!continues && ++count > characters) || end == 4 * characters)
            return std::string(text.substr(0, end)).append(Ellipsis);
    }
    return std::string(text);
}

} // namespace quillet::sync
