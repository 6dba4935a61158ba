#include "headoffice/guards/WriteGuard.h"

#include "data/AsciiText.h"
#include "data/Error.h"
#include "headoffice/guards/SqlTokens.h"

#include <algorithm>
#include <cstddef>
#include <optional>

namespace quillet::headoffice {

namespace {

using Kind = SqlToken::Kind;

[[noreturn]] void refuse(const std::string& sentence) {
    throw data::providerError("42000", sentence);
}

[[noreturn]] void refuseForm() {
    refuse("Only updates of single rows are written here: UPDATE table SET column = value, ... "
           "WHERE column = 'text' AND ...");
}

/// Reads the one form of statement there is; everything else ends it.
class Parser {
public:
    explicit Parser(std::string_view statement)
        : tokens_(sqlTokens(statement, Backslash::IsPlain)) {
        // With a backslash the server might see other texts than these.
        if (statement.find('\\') != std::string_view::npos)
            refuse("A statement here has no backslash.");
    }

    UpdateStatement read() {
        UpdateStatement result;
        expectWord("UPDATE");
        result.table = name();
        expectWord("SET");
        do
            result.values.push_back(assignment(true));
        while (takeSymbol(","));
        expectWord("WHERE");
        do
            result.keys.push_back(assignment(false));
        while (takeWord("AND"));
        takeSymbol(";");
        if (position_ != tokens_.size())
            refuseForm();
        return result;
    }

private:
    UpdateStatement::Column assignment(bool anyValue) {
        std::string column = name();
        expectSymbol("=");
        if (const auto value = text())
            return {std::move(column), *value};
        // A number would equal every text that does not begin with one.
        if (!anyValue)
            refuseForm();
        return {std::move(column), otherValue()};
    }

    std::string otherValue() {
        if (takeWord("NOW")) {
            expectSymbol("(");
            expectSymbol(")");
            return "NOW()";
        }
        if (takeWord("NULL"))
            return {};
        const std::string sign = takeSymbol("-") ? "-" : "";
        if (!isAt(Kind::Number))
            refuseForm();
        return sign + std::string(tokens_[position_++].text);
    }

    std::optional<std::string> text() {
        if (!isAt(Kind::Text) || tokens_[position_].text.front() != '\'')
            return std::nullopt;
        const std::string_view quoted = tokens_[position_++].text;
        if (quoted.size() < 2 || quoted.back() != '\'')
            refuseForm();
        std::string result;
        for (std::size_t i = 1; i + 1 < quoted.size(); ++i) {
            result += quoted[i];
            i += quoted[i] == '\'' ? 1 : 0;
        }
        return result;
    }

    std::string name() {
        if (!isAt(Kind::Word) && !isAt(Kind::Name))
            refuseForm();
        return data::upperCase(tokens_[position_++].text);
    }

    bool isAt(Kind kind) const {
        return position_ < tokens_.size() && tokens_[position_].kind == kind;
    }

    bool take(Kind kind, std::string_view text) {
        const bool is = isAt(kind) && data::equalIgnoringCase(tokens_[position_].text, text);
        position_ += is ? 1 : 0;
        return is;
    }

    bool takeWord(std::string_view word) { return take(Kind::Word, word); }
    bool takeSymbol(std::string_view symbol) { return take(Kind::Symbol, symbol); }

    void expectWord(std::string_view word) {
        if (!takeWord(word))
            refuseForm();
    }

    void expectSymbol(std::string_view symbol) {
        if (!takeSymbol(symbol))
            refuseForm();
    }

    std::vector<SqlToken> tokens_;
    std::size_t position_ = 0;
};

bool isReport(const UpdateStatement& statement) {
    return statement.table == WriteGuard::ReportTable && statement.values.size() == 2 &&
           statement.values[0].first == "RECEIVE_VER" &&
           statement.values[1] == UpdateStatement::Column{"RECEIVE_VER_SDATE", "NOW()"} &&
           statement.keys.size() == 2 && statement.keys[0].first == "POS_ID" &&
           statement.keys[1].first == "RCT_CODE";
}

} // namespace

WriteGuard::WriteGuard(std::vector<std::string> tables) : tables_(std::move(tables)) {
    for (std::string& table : tables_)
        table = data::upperCase(table);
}

UpdateStatement WriteGuard::require(std::string_view statement) const {
    UpdateStatement update = Parser(statement).read();
    update.isReport = isReport(update);
    if (update.isReport || std::find(tables_.begin(), tables_.end(), update.table) != tables_.end())
        return update;
    if (update.table != ReportTable)
        refuse("Counters do not write the table '" + update.table + "'.");
    refuse("Counters write nothing of the table POS but the version they report.");
}

} // namespace quillet::headoffice
