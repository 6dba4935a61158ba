#include "data/Recordset.h"

#include "data/Error.h"

#include <gmock/gmock.h>

#include <array>
#include <limits>

namespace quillet::data {
namespace {

Recordset recordsetOf(const std::vector<std::string>& codes,
                      TextComparison comparison = TextComparison::Access) {
    FieldList fields(2);
    fields[0].Name = "KIND_CODE";
    fields[0].comparison = comparison;
    fields[1].Name = "POSITION";
    fields[1].Type = DataType::Integer;
    Recordset recordset(fields);
    std::int64_t row = 0;
    for (const std::string& text : codes) {
        const Value code = Value::text(recordset.arena().copy(text));
        recordset.addRow(std::array{text == "NULL" ? Value() : code, Value::integer(row++)});
    }
    return recordset;
}

/// The row that Find stops at, -1 behind the last one, or minus the error's number.
long found(Recordset& recordset, std::string_view criteria) {
    try {
        recordset.Find(criteria);
        return recordset.Eof() ? -1 : static_cast<long>(recordset.Item(1).asInteger());
    } catch (const Error& error) {
        return -error.Number();
    }
}

TEST(RecordsetTest, FindsForwardAsTheColumnCompares) {
    const auto foundFrom = [](int start, std::string_view criteria) {
        Recordset rows = recordsetOf({"A", "B", "A", "NULL", "C", "A"});
        while (start-- > 0)
            rows.MoveNext();
        return found(rows, criteria);
    };
    EXPECT_EQ(foundFrom(0, "KIND_CODE = 'A' "), 0) << "the current row counts";
    EXPECT_EQ(foundFrom(1, " KIND_CODE = 'A' "), 2) << "a blank in front does not matter";
    EXPECT_EQ(foundFrom(3, "kind_code='A'"), 5);
    EXPECT_EQ(foundFrom(2, "KIND_CODE = 'B'"), -1) << "behind the current row there is none";
    EXPECT_EQ(foundFrom(6, "KIND_CODE = 'A'"), -number::NoCurrentRecord);
    EXPECT_EQ(foundFrom(0, "KIND_CODE = ''"), -1) << "Null equals nothing";

    const auto position = [](TextComparison rule, std::string_view criteria) {
        Recordset rows = recordsetOf({"zo01 ", "ZO01", "ZO02"}, rule);
        return found(rows, criteria);
    };
    EXPECT_EQ(position(TextComparison::Access, "KIND_CODE = 'ZO01'"), 0);
    EXPECT_EQ(position(TextComparison::NoCase, "KIND_CODE = 'ZO01'"), 1);
    EXPECT_EQ(position(TextComparison::RTrim, "KIND_CODE = 'zo01'"), 0);
    EXPECT_EQ(position(TextComparison::RTrim, "KIND_CODE = 'zo02'"), -1);
    EXPECT_EQ(position(TextComparison::Binary, "KIND_CODE = 'zo01'"), -1);
    EXPECT_EQ(position(TextComparison::Binary, "KIND_CODE = 'zo01 '"), 0);
}

TEST(RecordsetTest, RefusesWhatIsNotOneComparison) {
    Recordset rows = recordsetOf({"O'Neil", "A"});
    EXPECT_EQ(found(rows, "KIND_CODE = 'O''Neil'"), 0);
    for (const char* criteria :
         {"KIND_CODE = 'O'Neil' ", "KIND_CODE = 'A", "KIND_CODE = A", "KIND_CODE <> 'A'",
          "KIND_CODE", "", "= 'A'", "KIND_CODE = 'A' AND KIND_CODE = 'B'", "KIND_CODE = '"})
        EXPECT_EQ(found(rows, criteria), -number::InvalidArgument) << criteria;
    EXPECT_EQ(found(rows, "OTHER = 'A'"), -number::ItemNotFound);
    EXPECT_EQ(found(rows, "POSITION = '1'"), 1) << "numbers by their text";
}

TEST(RecordsetTest, KeepsManyRowsInPlaceAndKnowsItsEnds) {
    std::vector<std::string> codes;
    for (int i = 0; i < 1000; ++i)
        codes.push_back("C" + std::to_string(i));
    Recordset rows = recordsetOf(codes);
    EXPECT_EQ(rows.RecordCount(), 1000);
    for (int i = 0; !rows.Eof(); rows.MoveNext(), ++i)
        ASSERT_EQ(rows.Item(0).toText(), "C" + std::to_string(i));
    EXPECT_THROW(rows.MoveNext(), Error);
    EXPECT_THROW(rows.Item(0), Error);
    rows.MoveFirst();
    EXPECT_EQ(found(rows, "KIND_CODE = 'c999'"), 999);
    EXPECT_THROW(rows.Item(2), Error);

    Recordset none = recordsetOf({});
    EXPECT_TRUE(none.Eof());
    EXPECT_THROW(none.MoveFirst(), Error);
    none.Close();
    EXPECT_THROW(none.Eof(), Error) << "closed, not empty";
    EXPECT_THROW(Recordset().RecordCount(), Error);
}

TEST(RecordsetTest, KnowsEveryCellWhereverTheNullsAre) {
    constexpr std::int64_t Rows = 300;
    for (const std::size_t columns : {1U, 7U, 8U, 9U, 64U, 71U}) {
        const auto isNull = [](std::int64_t row, std::size_t column) {
            return row % 5 == 0 || (static_cast<std::size_t>(row) * 31 + column * column) % 3 == 0;
        };
        Recordset recordset{FieldList(columns)};
        std::vector<Value> cells(columns);
        for (std::int64_t row = 0; row < Rows; ++row) {
            for (std::size_t i = 0; i < columns; ++i)
                cells[i] = isNull(row, i)
                               ? Value()
                               : Value::integer(row * 100 + static_cast<std::int64_t>(i));
            recordset.addRow(cells);
        }
        for (std::int64_t row = 0; row < Rows; ++row, recordset.MoveNext()) {
            for (std::size_t i = 0; i < columns; ++i) {
                const Value cell = recordset.Item(i);
                ASSERT_EQ(cell.isNull(), isNull(row, i)) << row << ' ' << i;
                ASSERT_TRUE(cell.isNull() ||
                            cell.asInteger() == row * 100 + static_cast<std::int64_t>(i))
                    << row << ' ' << i;
            }
        }
        EXPECT_TRUE(recordset.Eof());
    }
}

TEST(ValueTest, ReadsAsThePlatformConvertsIt) {
    const DateTime moment{2026, 11, 5, 9, 3, 7, 120'000'000};
    const std::vector<std::pair<Value, std::string>> cases{
        {Value(), ""},
        {Value::boolean(true), "True"},
        {Value::integer(-42), "-42"},
        {Value::unsignedInteger(std::numeric_limits<std::uint64_t>::max()), "18446744073709551615"},
        {Value::single(1.1F), "1.1"},
        {Value::real(12.0), "12"},
        {Value::real(-0.0), "0"},
        {Value::real(0.1), "0.1"},
        {Value::real(1e21), "1000000000000000000000"},
        {Value::real(1e-7), "0.0000001"},
        {Value::decimal("1500.00"), "1500"},
        {Value::decimal("-0.050"), "-0.05"},
        {Value::decimal("-0.00"), "0"},
        {Value::decimal("1000"), "1000"},
        {Value::dateTime(moment), "2026-11-05 09:03:07"},
        {Value::date(moment), "2026-11-05"},
        {Value::time(moment), "09:03:07"},
        {Value::guid("0123456789abcdef"), "{33323130-3534-3736-3839-616263646566}"},
        {Value::text("한글 "), "한글 "}};
    for (const auto& [value, text] : cases)
        EXPECT_EQ(value.toText(), text);
    EXPECT_EQ(Value::dateTime(moment).asDateTime(), moment);
    EXPECT_EQ(Value::date({-44, 3, 15}).asDateTime(), (DateTime{-44, 3, 15}));
}

} // namespace
} // namespace quillet::data
