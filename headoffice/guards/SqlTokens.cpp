#include "headoffice/guards/SqlTokens.h"

#include <algorithm>
#include <cstddef>

namespace quillet::headoffice {

namespace {

constexpr bool isDigit(char c) noexcept {
    return c >= '0' && c <= '9';
}

/// Letters beyond ASCII are letters of names, whichever they are.
constexpr bool isWordCharacter(char c) noexcept {
    return isDigit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == '$' ||
           static_cast<unsigned char>(c) >= 0x80;
}

constexpr bool isBlankCharacter(char c) noexcept {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

class Scanner {
public:
    Scanner(std::string_view text, Backslash backslash) : text_(text), backslash_(backslash) {}

    std::vector<SqlToken> run() {
        while (position_ < text_.size()) {
            const char c = text_[position_];
            if (isBlankCharacter(c))
                ++position_;
            else if (isLineComment())
                position_ = behind("\n", position_);
            else if (startsWith("/*"))
                comment();
            else if (c == '\'' || c == '"' || c == '`')
                quoted(c);
            else if (isWordCharacter(c))
                word();
            else
                add(SqlToken::Kind::Symbol, position_ + 1);
        }
        return std::move(tokens_);
    }

private:
    bool startsWith(std::string_view what) const {
        return text_.substr(position_).starts_with(what);
    }

    /// Two dashes are a comment only before a blank, a control character or the end.
    bool isLineComment() const {
        return text_[position_] == '#' ||
               (startsWith("--") && (position_ + 2 >= text_.size() ||
                                     static_cast<unsigned char>(text_[position_ + 2]) <= ' '));
    }

    std::size_t behind(std::string_view what, std::size_t from) const {
        const std::size_t found = text_.find(what, from);
        return found == std::string_view::npos ? text_.size() : found + what.size();
    }

    void comment() {
        const bool isObeyed = startsWith("/*!") || startsWith("/*M!") || startsWith("/*+");
        const std::size_t end = behind("*/", position_ + 2);
        if (isObeyed)
            add(SqlToken::Kind::Hint, end);
        position_ = end;
    }

    void quoted(char quote) {
        const bool escapes = backslash_ == Backslash::Escapes && quote != '`';
        std::size_t end = position_ + 1;
        for (; end < text_.size(); ++end) {
            if (escapes && text_[end] == '\\')
                ++end;
            else if (text_[end] == quote) {
                if (end + 1 == text_.size() || text_[end + 1] != quote)
                    break;
                ++end;
            }
        }
        end = std::min(end + 1, text_.size());
        if (quote != '`')
            return add(SqlToken::Kind::Text, end);
        const std::size_t closing = text_[end - 1] == '`' && end - position_ > 1 ? 1 : 0;
        tokens_.push_back(
            {SqlToken::Kind::Name, text_.substr(position_ + 1, end - position_ - 1 - closing)});
        position_ = end;
    }

    void word() {
        std::size_t end = position_;
        bool isNumber = true;
        while (end < text_.size() && isWordCharacter(text_[end]))
            isNumber = isDigit(text_[end++]) && isNumber;
        if (isNumber && end + 1 < text_.size() && text_[end] == '.' && isDigit(text_[end + 1]))
            end = std::min(text_.find_first_not_of("0123456789", end + 1), text_.size());
        add(isNumber ? SqlToken::Kind::Number : SqlToken::Kind::Word, end);
    }

    void add(SqlToken::Kind kind, std::size_t end) {
        tokens_.push_back({kind, text_.substr(position_, end - position_)});
        position_ = end;
    }

    std::string_view text_;
    Backslash backslash_;
    std::size_t position_ = 0;
    std::vector<SqlToken> tokens_;
};

} // namespace

std::vector<SqlToken> sqlTokens(std::string_view statement, Backslash backslash) {
    return Scanner(statement, backslash).run();
}

} // namespace quillet::headoffice
