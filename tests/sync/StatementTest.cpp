#include "data/Error.h"
#include "sync/LeadingNumber.h"
#include "sync/SqlTemplate.h"
#include "sync/StatementSubject.h"

#include <gtest/gtest.h>

#include <array>

namespace quillet::sync {
namespace {

TEST(LeadingNumberTest, TakesTheNumberATextStartsWith) {
    const std::vector<std::pair<std::string, std::string>> cases{{"", "0"},
                                                                 {"abc", "0"},
                                                                 {"12", "12"},
                                                                 {"12.50", "12.5"},
                                                                 {" 1 2\t3\n4", "1234"},
                                                                 {"007", "7"},
                                                                 {"A1", "0"},
                                                                 {"1.2.3", "1.2"},
                                                                 {"-5x", "-5"},
                                                                 {"+5", "5"},
                                                                 {"- 5", "-5"},
                                                                 {"5-3", "5"},
                                                                 {"--5", "0"},
                                                                 {".5", "0.5"},
                                                                 {"5.", "5"},
                                                                 {"1,500", "1"},
                                                                 {"1e5", "1"},
                                                                 {".", "0"},
                                                                 {"-", "0"},
                                                                 {"０", "0"},
                                                                 {"123456789012", "123456789012"},
                                                                 {"-0", "0"}};
    for (const auto& [text, number] : cases)
        EXPECT_EQ(numberText(leadingNumber(text)), number) << '"' << text << '"';
}

TEST(SqlTemplateTest, PutsFieldsWhereTheyBelong) {
    data::Recordset rows(data::FieldList(3));
    // Neither escaped nor expanded.
    rows.addRow(
        std::array{data::Value::text("0101"), data::Value::text("김치's {2}"), data::Value()});
    const ServerRow row(rows);

    const SqlTemplate statement(" SET A = '{1}', B = {#0},{flag} C = '{2}' ", {"x", "flag"});
    EXPECT_EQ(statement.render(row, std::array<std::string_view, 2>{"unused", "F"}),
              " SET A = '김치's {2}', B = 101,F C = '' ");

    EXPECT_EQ(SqlTemplate("{#2?}|{#0?}|{trim 2}").render(row), "0|101|");
    const SqlTemplate number("{#2}");
    try {
        (void)number.render(row);
        FAIL() << "a Null is no number";
    } catch (const data::Error& error) {
        EXPECT_EQ(error.Number(), 94);
    }
    EXPECT_THROW(SqlTemplate("{unknown}"), std::logic_error);
}

TEST(StatementSubjectTest, NamesTheRowAndNothingElseOfIt) {
    const std::vector<std::pair<std::string, std::string>> cases{
        {" INSERT INTO USR (USR_CODE,USR_PASS) VALUES ('0012','PIN' )", "USR  USR_CODE = '0012'"},
        {" INSERT INTO USR (USR_CODE,USR_PASS) VALUES ('00'12','PIN' )", "USR  USR_CODE = '00'"},
        {" INSERT INTO USR (USR_CODE,USR_PASS) VALUES ('','PIN' )", "USR  USR_CODE = ''"},
        {" INSERT INTO USR (USR_CODE,USR_PASS) VALUES (''PIN','PIN' )", "USR  USR_CODE = ''"},
        {"INSERT INTO USR VALUES ('0012','PIN')", "USR"},
        {"INSERT INTO CT (CT_CODE) VALUES ( 'M1','PIN') ", "CT  CT_CODE = 'M1'"},
        {" INSERT INTO KIND (KIND_CODE,KIND_NAME)  SELECT '0101','PIN' ",
         "KIND  KIND_CODE = '0101'"},
        {" UPDATE USR SET USR_NAME = 'PIN' WHERE USR_CODE = '0012' ", "USR  USR_CODE = '0012'"},
        {" UPDATE USR SET USR_NAME = 'O'PIN WHERE X = 'PIN', B = 'PIN' WHERE USR_CODE = '12' ",
         "USR  USR_CODE = '12'"},
        {" UPDATE USR SET USR_NAME = 'PIN' WHERE USR_CODE = '1' OR 'PIN' = 'PIN' ",
         "USR  USR_CODE = '1'"},
        {" UPDATE PRC SET PRC_QTY = 7 WHERE PR_CODE = 'A1' AND PRC_CODE = '22' ",
         "PRC  PR_CODE = 'A1' AND PRC_CODE = '22'"},
        {" UPDATE CF SET CF_CONTENTS = 'PIN' WHERE CF_PART = '회사' AND CF_IDX = 13 ",
         "CF  CF_PART = '회사' AND CF_IDX = 13"},
        {" UPDATE UPD SET  UPD_PR = '2026-01-01' ,,,,", "UPD"},
        {" DELETE FROM PRO WHERE PRO_RCV = '9'", "PRO  PRO_RCV = '9'"},
        {"ALTER TABLE PRC ADD COLUMN PRC_RCV TEXT(1) ", "ALTER"},
        {"'PIN' USR", ""},
        {"", ""}};
    for (const auto& [statement, subject] : cases)
        EXPECT_EQ(statementSubject(statement), subject) << statement;

    std::string hangul;
    for (int i = 0; i < 400'000; ++i)
        hangul += "값";
    const std::string start = "PROP  PROP_CODE = '";
    EXPECT_EQ(statementSubject(" INSERT INTO PROP (PROP_CODE) VALUES ('" + hangul + "') "),
              start + hangul.substr(0, 3 * (60 - start.size())) + "…");
    EXPECT_LT(elided(std::string(100'000, '\x80'), 60).size(), 300U) << "no UTF-8 at all";
}

TEST(StatementSubjectTest, ARefusalIsShownWithoutWhatItQuotes) {
    const std::vector<std::pair<std::string, std::string>> cases{
        {"-2147217900 : near \"0000\": syntax error", "-2147217900 : near …: syntax error"},
        {"Syntax error in string in query expression ''PIN','PIN' )'.",
         "Syntax error in string in query expression …."},
        {"UNIQUE constraint failed: USR.USR_CODE", "UNIQUE constraint failed: USR.USR_CODE"},
        // Cut by the driver, which quotes with the marks that the values have.
        {"query expression ''U1','PIN','0000", "query expression …"},
        {"query expression ''U1','PIN", "query expression …"},
        {"query expression ''U1','핀", "query expression …"}};
    for (const auto& [error, shown] : cases)
        EXPECT_EQ(withoutQuotations(error), shown) << error;
}

} // namespace
} // namespace quillet::sync
