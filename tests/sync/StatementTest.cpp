#include "db/Error.h"
#include "sync/LeadingNumber.h"
#include "sync/SqlTemplate.h"

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
    db::Recordset rows(db::FieldList(3));
    // Neither escaped nor expanded.
    rows.addRow(std::array{db::Value::text("0101"), db::Value::text("김치's {2}"), db::Value()});
    const ServerRow row(rows);

    const SqlTemplate statement(" SET A = '{1}', B = {#0},{flag} C = '{2}' ", {"x", "flag"});
    EXPECT_EQ(statement.render(row, std::array<std::string_view, 2>{"unused", "F"}),
              " SET A = '김치's {2}', B = 101,F C = '' ");

    EXPECT_EQ(SqlTemplate("{#2?}|{#0?}|{trim 2}").render(row), "0|101|");
    const SqlTemplate number("{#2}");
    try {
        (void)number.render(row);
        FAIL() << "a Null is no number";
    } catch (const db::Error& error) {
        EXPECT_EQ(error.Number(), 94);
    }
    EXPECT_THROW(SqlTemplate("{unknown}"), std::logic_error);
}

} // namespace
} // namespace quillet::sync
