#include "sync/SqlTemplate.h"

#include "data/AsciiText.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>

namespace quillet::sync {

namespace {

std::size_t fieldIndex(std::string_view digits) {
    std::size_t index = 0;
    const auto [end, failure] =
        std::from_chars(digits.data(), digits.data() + digits.size(), index);
    if (failure != std::errc() || end != digits.data() + digits.size())
        throw std::logic_error("unknown place in a statement: " + std::string(digits));
    return index;
}

} // namespace

SqlTemplate::Piece SqlTemplate::place(std::string_view name,
                                      std::initializer_list<std::string_view> names) {
    if (name.starts_with('#') && name.ends_with('?'))
        return {Kind::NumberOrZero, {}, fieldIndex(name.substr(1, name.size() - 2))};
    if (name.starts_with('#'))
        return {Kind::Number, {}, fieldIndex(name.substr(1))};
    if (constexpr std::string_view trim = "trim "; name.starts_with(trim))
        return {Kind::Trimmed, {}, fieldIndex(name.substr(trim.size()))};
    const auto* const computed = std::find(names.begin(), names.end(), name);
    if (computed != names.end())
        return {Kind::Computed, {}, static_cast<std::size_t>(computed - names.begin())};
    return {Kind::Text, {}, fieldIndex(name)};
}

SqlTemplate::SqlTemplate(std::string_view pattern, std::initializer_list<std::string_view> names) {
    while (!pattern.empty()) {
        const std::size_t open = std::min(pattern.find('{'), pattern.size());
        if (open > 0)
            pieces_.push_back({Kind::Literal, std::string(pattern.substr(0, open))});
        literalSize_ += open;
        pattern.remove_prefix(open);
        if (pattern.empty())
            break;
        const std::size_t close = pattern.find('}');
        if (close == std::string_view::npos)
            throw std::logic_error("unclosed place in a statement");
        pieces_.push_back(place(pattern.substr(1, close - 1), names));
        pattern.remove_prefix(close + 1);
    }
}

std::string_view SqlTemplate::opening() const {
    const bool any = !pieces_.empty() && pieces_.front().kind == Kind::Literal;
    return any ? std::string_view(pieces_.front().literal) : std::string_view();
}

std::string SqlTemplate::render(const ServerRow& row,
                                std::span<const std::string_view> computed) const {
    QuoteGuard guard;
    std::string statement = compose(row, computed, guard);
    guard.require(statement);
    return statement;
}

std::string SqlTemplate::renderCriteria(const ServerRow& row) const {
    QuoteGuard unasked;
    return compose(row, {}, unasked);
}

std::string SqlTemplate::compose(const ServerRow& row, std::span<const std::string_view> computed,
                                 QuoteGuard& guard) const {
    std::string statement;
    statement.reserve(literalSize_ + pieces_.size() * 8);
    for (const Piece& piece : pieces_) {
        const std::size_t start = statement.size();
        switch (piece.kind) {
        case Kind::Literal:
            statement += piece.literal;
            continue;
        case Kind::Number:
            row.appendNumberTo(statement, piece.index);
            continue;
        case Kind::NumberOrZero:
            if (row.isNull(piece.index))
                statement += '0';
            else
                row.appendNumberTo(statement, piece.index);
            continue;
        case Kind::Text:
            row.appendTextTo(statement, piece.index);
            break;
        case Kind::Trimmed:
            statement += data::trimmed(row.text(piece.index));
            break;
        case Kind::Computed:
            statement += computed[piece.index];
            break;
        }
        guard.add(std::string_view(statement).substr(start));
    }
    return statement;
}

} // namespace quillet::sync
