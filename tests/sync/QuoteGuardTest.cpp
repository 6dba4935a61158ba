#include "sync/QuoteGuard.h"

#include "data/Error.h"
#include "db/Connection.h"
#include "db/store/EmptyStore.h"
#include "files/Paths.h"
#include "sync/SqlTemplate.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <array>
#include <vector>

namespace quillet::sync {
namespace {

using Verdict = QuoteGuard::Verdict;

Verdict verdictOn(const std::vector<std::string>& texts) {
    QuoteGuard guard;
    for (const std::string& text : texts)
        guard.add(text);
    return guard.verdict();
}

TEST(QuoteGuardTest, TellsABrokenStatementFromAnotherOne) {
    const std::vector<std::pair<std::vector<std::string>, Verdict>> cases{
        {{}, Verdict::Fine},
        {{"", "한강 [본점] \"a\" `b`", "--"}, Verdict::Fine},
        {{"it''s", "''", "''''"}, Verdict::Fine},
        {{"할매's"}, Verdict::Surfaces},
        {{"'''"}, Verdict::Surfaces},
        {{"a'", "b'", "c'"}, Verdict::Surfaces},
        {{"[x]", "a'b", "c"}, Verdict::Surfaces}, // in a text, before anything is broken
        {{"a', USR_PASS = '0000', USR_LVL='9', USR_CARD = 'x"}, Verdict::Refused},
        {{"a'", "b'"}, Verdict::Refused},
        {{"a'''b", "c'"}, Verdict::Refused},
        {{"a'[", "b"}, Verdict::Refused},
        {{"a'", "b", "]"}, Verdict::Refused},
        {{"a''b`", "c'"}, Verdict::Refused},
        {{"a'", "\""}, Verdict::Refused}};
    for (const auto& [texts, verdict] : cases)
        EXPECT_EQ(verdictOn(texts), verdict) << testing::PrintToString(texts);
}

/// Every text of at most two of the characters that mean something, and some that would do harm.
std::vector<std::string> allTexts() {
    const std::string characters = "'\"[]`-/*;,a";
    std::vector<std::string> texts{"",
                                   "',USR_PASS = '0000",
                                   "',USR_PASS = '0000','",
                                   "' & \"'\" & '",
                                   "',USR_PASS = \"'\",USR_CARD = '",
                                   "',[USR_PASS] = '0000"};
    for (const char first : characters) {
        texts.emplace_back(1, first);
        for (const char second : characters)
            texts.push_back({first, second});
    }
    return texts;
}

/// What a text between quotes stands for.
std::string meant(std::string text) {
    for (std::size_t at = 0; (at = text.find("''", at)) != std::string::npos; ++at)
        text.erase(at, 1);
    return text;
}

TEST(QuoteGuardTest, WhatRunsWritesItsOwnColumnsOnly) {
    const tests::TempFolder folder;
    db::createEmptyStore(folder / "food.MDB");
    db::Connection store;
    store.Open("Driver={Microsoft Access Driver (*.mdb)};Dbq=food.MDB;DefaultDir=" +
               files::textOf(folder.path()));
    store.BeginTrans();
    store.Execute("INSERT INTO USR (USR_CODE,USR_PASS) VALUES ('1','4821')");
    const SqlTemplate update(
        " UPDATE USR SET USR_NAME = '{0}',USR_CARD = '{1}' WHERE USR_CODE = '1' ");
    int ran = 0;
    int failed = 0;
    const std::vector<std::string> texts = allTexts();
    for (const std::string& name : texts)
        for (const std::string& card : texts) {
            SCOPED_TRACE(name + " and " + card);
            data::Recordset row(data::FieldList(2));
            row.addRow(std::array{data::Value::text(name), data::Value::text(card)});
            row.MoveFirst();
            const Verdict verdict = verdictOn({name, card});
            if (verdict == Verdict::Refused) {
                EXPECT_THROW((void)update.render(ServerRow(row)), data::Error);
                continue;
            }
            const std::string statement = update.render(ServerRow(row));
            if (verdict == Verdict::Surfaces) {
                EXPECT_THROW(store.Execute(statement), data::Error);
                ++failed;
                continue;
            }
            store.Execute(statement);
            data::Recordset user = store.read("SELECT USR_NAME,USR_CARD,USR_PASS FROM USR");
            EXPECT_EQ(user.Item(0).toText(), meant(name));
            EXPECT_EQ(user.Item(1).toText(), meant(card));
            EXPECT_EQ(user.Item(2).toText(), "4821");
            ++ran;
        }
    EXPECT_GT(ran, 10'000);
    EXPECT_GT(failed, 1'000);
}

} // namespace
} // namespace quillet::sync
