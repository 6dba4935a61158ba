#include "headoffice/guards/QueryGuard.h"

#include "data/AsciiText.h"
#include "data/Error.h"
#include "headoffice/guards/SqlTokens.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>

namespace quillet::headoffice {

namespace {

using Tokens = std::vector<SqlToken>;

[[noreturn]] void refuse(const std::string& sentence) {
    throw data::providerError("42000", sentence);
}

bool isWord(const SqlToken& token, std::string_view word) {
    return token.kind == SqlToken::Kind::Word && data::equalIgnoringCase(token.text, word);
}

/// Words that no counter's query has and that do more than read rows.
constexpr std::array<std::string_view, 9> Forbidden{
    "INTO", "OUTFILE", "DUMPFILE", "LOAD_FILE", "LOCK", "GET_LOCK", "SETVAL", "NEXTVAL", "NEXT"};

void requireQuery(const Tokens& tokens) {
    const auto first = std::find_if(tokens.begin(), tokens.end(), [](const SqlToken& token) {
        return token.kind != SqlToken::Kind::Symbol || token.text != "(";
    });
    if (first == tokens.end() || !(isWord(*first, "SELECT") || isWord(*first, "WITH")))
        refuse("Only queries are answered here: a statement begins with SELECT.");
    for (auto token = first; token != tokens.end(); ++token) {
        if (token->kind == SqlToken::Kind::Hint)
            refuse("A query here has no comments that the database would obey.");
        if (token->kind == SqlToken::Kind::Symbol && token->text == ";" &&
            token + 1 != tokens.end())
            refuse("Only one query is answered at a time.");
        for (const std::string_view word : Forbidden) {
            if (isWord(*token, word))
                refuse("A query here only reads rows: it has no " + std::string(word) + ".");
        }
        if (isWord(*token, "FOR") && token + 1 != tokens.end() &&
            (isWord(token[1], "UPDATE") || isWord(token[1], "SHARE")))
            refuse("A query here only reads rows: it locks none.");
    }
}

} // namespace

void requireQuery(std::string_view statement) {
    // Nobody knows the server's mode here, so a query has to be one in both.
    for (const Backslash backslash : {Backslash::Escapes, Backslash::IsPlain}) {
        requireQuery(sqlTokens(statement, backslash));
        if (statement.find('\\') == std::string_view::npos)
            return;
    }
}

} // namespace quillet::headoffice
