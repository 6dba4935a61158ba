#include "db/sqlite/AccessDialect.h"

#include "data/AsciiText.h"
#include "data/Error.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <string_view>
#include <utility>

namespace quillet::db {

namespace {

constexpr int DeepestNesting = 100;

[[noreturn]] void syntaxError(const std::string& description) {
    throw data::providerError("42000", description);
}

[[noreturn]] void unterminated(std::string_view rest) {
    syntaxError("Syntax error in string in query expression '" + std::string(rest) + "'.");
}

/// Behind the closing mark of the quoted text or name at `position`. A doubled mark reads as the
/// end of one and the start of the next, which comes to the same.
std::size_t endOfQuoted(std::string_view text, std::size_t position) {
    const char mark = text[position] == '[' ? ']' : text[position];
    const std::size_t end = text.find(mark, position + 1);
    if (end == std::string_view::npos)
        unterminated(text.substr(position));
    return end + 1;
}

void refuseComment(std::string_view text, std::size_t position) {
    const std::string_view pair = text.substr(position, 2);
    if (pair == "--" || pair == "/*")
        syntaxError("Syntax error (missing operator) in query expression '" +
                    std::string(text.substr(position)) + "'.");
}

/// Looks through a statement once; most need nothing.
bool needsTranslation(const std::string& text) {
    bool found = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        // The C library's search is several times as fast as a loop of our own.
        i += std::strcspn(text.c_str() + i, "\"'[`-/+&");
        switch (i < text.size() ? text[i] : ' ') {
        case '"':
            found = true;
            [[fallthrough]];
        case '\'':
        case '[':
        case '`':
            i = endOfQuoted(text, i) - 1;
            break;
        case '-':
        case '/':
            refuseComment(text, i);
            break;
        case '+':
        case '&':
            found = true;
            break;
        default: // behind the end, or at a NUL: see below
            break;
        }
    }
    if (text.find('\0') != std::string::npos)
        syntaxError("Syntax error: the statement holds a NUL character.");
    return found;
}

/// Words behind which an expression begins, so that a sign there has one operand only.
constexpr std::array<std::string_view, 21> WordsBeforeExpressions = {
    "ALL",  "AND",    "AS",     "BETWEEN", "BY",     "DEFAULT", "DISTINCT",
    "ELSE", "ESCAPE", "HAVING", "IN",      "IS",     "LIKE",    "LIMIT",
    "NOT",  "OFFSET", "ON",     "OR",      "SELECT", "THEN",    "WHERE"};

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}
bool isNameCharacter(char c) {
    return isDigit(c) || (data::upperAscii(c) >= 'A' && data::upperAscii(c) <= 'Z') || c == '_' ||
           c == '$' || static_cast<unsigned char>(c) >= 0x80;
}

/// Copies a statement and rewrites its joining operators on the way. Only as much of the grammar is
/// known as it takes to find their operands; whatever is wrong otherwise is left to the database.
class Translator {
public:
    explicit Translator(std::string_view text) : text_(text) {}

    std::string run() {
        copyExpressions(End::OfText);
        return std::move(out_);
    }

private:
    enum class End { OfText, AtParenthesis, AtEndWord };
    enum class Joined { WithAmpersand, WithPlus };

    bool atEnd() const { return position_ == text_.size(); }
    char peek() const { return atEnd() ? '\0' : text_[position_]; }

    std::string_view peekWord() const {
        std::size_t end = position_;
        while (end < text_.size() && isNameCharacter(text_[end]))
            ++end;
        return text_.substr(position_, end - position_);
    }

    bool atWord(std::string_view word) const { return data::equalIgnoringCase(peekWord(), word); }

    void copy(std::size_t count) {
        out_.append(text_, position_, count);
        position_ += count;
    }

    void copyBlanks() {
        const std::size_t end =
            std::min(text_.find_first_not_of(" \t\r\n\f", position_), text_.size());
        copy(end - position_);
    }

    bool atOperand() const {
        const char c = peek();
        if (isNameCharacter(c) && !isDigit(c)) {
            const std::string_view word = peekWord();
            return std::none_of(WordsBeforeExpressions.begin(), WordsBeforeExpressions.end(),
                                [word](std::string_view candidate) {
                                    return data::equalIgnoringCase(word, candidate);
                                });
        }
        return isDigit(c) || std::string_view("'\"[`(.+-").find(c) != std::string_view::npos;
    }

    /// Copies expressions and everything between them.
    void copyExpressions(End end) {
        for (copyBlanks(); !atEnd(); copyBlanks()) {
            if (peek() == ')' && end != End::OfText)
                return;
            if (end == End::AtEndWord && atWord("END"))
                return;
            if (atOperand())
                copyJoined(Joined::WithAmpersand);
            else if (isNameCharacter(peek()))
                copy(peekWord().size());
            else
                copy(1);
        }
    }

    /// Copies one operand of the level below.
    void copyOperand(Joined level) {
        if (level == Joined::WithAmpersand)
            copyJoined(Joined::WithPlus);
        else
            copyProduct();
    }

    /// Copies a chain `a + b - c` or `a & b`. It joins from the left, so that the calls it becomes
    /// all open in front of its first operand.
    void copyJoined(Joined level) {
        const bool plus = level == Joined::WithPlus;
        std::string outer = std::exchange(out_, {});
        copyOperand(level);
        copyBlanks();
        std::size_t calls = 0;
        while ((plus && (peek() == '+' || peek() == '-')) || (!plus && peek() == '&')) {
            const bool becomesCall = peek() != '-';
            if (becomesCall) {
                out_ += ',';
                ++position_;
                ++calls;
            } else {
                copy(1);
            }
            copyBlanks();
            if (!atOperand())
                syntaxError("Syntax error (missing operator) in query expression '" +
                            std::string(text_) + "'.");
            copyOperand(level);
            if (becomesCall)
                out_ += ')';
            copyBlanks();
        }
        const std::string chain = std::exchange(out_, std::move(outer));
        for (; calls > 0; --calls)
            out_ += plus ? "access_plus(" : "access_join(";
        out_ += chain;
    }

    void copyProduct() {
        copyPrimary();
        copyBlanks();
        while (peek() == '*' || peek() == '/' || peek() == '%') {
            copy(1);
            copyBlanks();
            if (!atOperand())
                return;
            copyPrimary();
            copyBlanks();
        }
    }

    void copyPrimary() {
        while (peek() == '+' || peek() == '-') {
            copy(1);
            copyBlanks();
        }
        const char c = peek();
        if (c == '(')
            copyParenthesis();
        else if (c == '"')
            copyDoubleQuoted();
        else if (c == '\'')
            copyQuoted();
        else if (isDigit(c) || c == '.')
            copyNumber();
        else if (atWord("CASE"))
            copyCase();
        else
            copyName();
    }

    void copyQuoted() {
        const char mark = peek();
        do {
            copy(endOfQuoted(text_, position_) - position_);
        } while (peek() == mark);
    }

    void copyDoubleQuoted() {
        out_ += '\'';
        do {
            const std::size_t end = endOfQuoted(text_, position_);
            for (++position_; position_ < end - 1; ++position_)
                out_.append(text_[position_] == '\'' ? 2 : 1, text_[position_]);
            position_ = end;
            if (peek() == '"')
                out_ += '"';
        } while (peek() == '"');
        out_ += '\'';
    }

    void copyNumber() {
        while (isNameCharacter(peek()) || peek() == '.') {
            const bool exponent = data::upperAscii(peek()) == 'E';
            copy(1);
            if (exponent && (peek() == '+' || peek() == '-'))
                copy(1);
        }
    }

    /// A name, perhaps of several parts, perhaps called as a function.
    void copyName() {
        for (;;) {
            if (peek() == '[' || peek() == '`')
                copyQuoted();
            else if (peek() == '*')
                copy(1);
            else
                copy(peekWord().size());
            if (peek() != '.')
                break;
            copy(1);
        }
        copyBlanks();
        if (peek() == '(')
            copyParenthesis();
    }

    void copyParenthesis() {
        copy(1);
        copyNested(End::AtParenthesis);
        if (peek() == ')')
            copy(1);
    }

    void copyCase() {
        copy(std::string_view("CASE").size());
        copyNested(End::AtEndWord);
        if (atWord("END"))
            copy(std::string_view("END").size());
    }

    void copyNested(End end) {
        if (++depth_ > DeepestNesting)
            syntaxError("The expression is nested too deeply.");
        copyExpressions(end);
        --depth_;
    }

    std::string_view text_;
    std::size_t position_ = 0;
    std::string out_;
    int depth_ = 0;
};

} // namespace

const std::string& translateAccessSql(const std::string& statement, std::string& buffer) {
    if (!needsTranslation(statement))
        return statement;
    buffer = Translator(statement).run();
    return buffer;
}

} // namespace quillet::db
