#include "rds/tablegram/CellDecoder.h"
#include "rds/tablegram/CellEncoder.h"
#include "rds/tablegram/TablegramReader.h"
#include "rds/tablegram/TablegramWriter.h"
#include "tests/support/Errors.h"
#include "tests/support/Hex.h"
#include "tests/support/RowsCursor.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace {

using namespace quillet;
using namespace quillet::rds;
using data::DataType;
using data::Value;
using quillet::tests::bytes;
using quillet::tests::hex;
using quillet::tests::RowsCursor;

constexpr std::uint32_t Fixed = columnflag::FixedLength;
constexpr std::uint32_t Nulls = columnflag::Nullable;

ColumnDescriptor column(DataType type, std::uint32_t maxLength, std::uint32_t flags,
                        std::uint32_t precision = 0xFF, std::int32_t scale = 0xFF) {
    ColumnDescriptor result;
    result.name = "C";
    result.type = type;
    result.maxLength = maxLength;
    result.flags = flags;
    result.precision = precision;
    result.scale = scale;
    return result;
}

std::string written(const TablegramMetadata& metadata, std::vector<RowsCursor::Row> rows) {
    std::string out;
    TablegramWriter writer([&out](std::string_view piece) { out += piece; }, metadata);
    RowsCursor cursor({}, std::move(rows));
    while (cursor.next())
        writer.writeRow(cursor);
    writer.finish();
    return out;
}

data::Recordset read(const std::string& tablegram) {
    ByteReader in(tablegram);
    data::Recordset recordset = readTablegram(in);
    EXPECT_EQ(in.remaining(), 0U);
    return recordset;
}

/// The cells of all rows, Null as "-".
std::vector<std::string> cells(data::Recordset recordset) {
    std::vector<std::string> result;
    for (; !recordset.Eof(); recordset.MoveNext()) {
        for (std::size_t i = 0; i < recordset.Fields().size(); ++i)
            result.push_back(recordset.Item(i).isNull() ? "-" : recordset.Item(i).toText());
    }
    return result;
}

bool isRefused(const std::string& tablegram) {
    return tests::errorOf([&] { read(tablegram); }).Number() == data::number::Unspecified;
}

std::string cell(const ColumnDescriptor& descriptor, const Value& value) {
    ByteWriter out;
    CellEncoder(descriptor).encode(value, CodePage(949), out);
    return out.take();
}

struct CellCase {
    ColumnDescriptor descriptor;
    std::string text; ///< what reading gives
    std::string wire;
};

void expectToRead(const CellCase& c) {
    ByteReader in(c.wire);
    data::Arena arena;
    EXPECT_EQ(CellDecoder(c.descriptor).decode(in, CodePage(949), arena).toText(), c.text);
    EXPECT_EQ(in.remaining(), 0U);
}

/// Of every type that has one form only.
std::vector<CellCase> cellCases() {
    return {
        {column(DataType::SmallInt, 2, Fixed), "-32768", "0080"},
        {column(DataType::Integer, 4, Fixed), "-2147483647", "01000080"},
        {column(DataType::Single, 4, Fixed), "-1.5", "0000C0BF"},
        {column(DataType::Double, 8, Fixed), "1.25", "000000000000F43F"},
        {column(DataType::Currency, 8, Fixed), "-1.0001", "EFD8FFFFFFFFFFFF"},
        {column(DataType::Currency, 8, Fixed), "-922337203685477.5808", "0000000000000080"},
        {column(DataType::Boolean, 2, Fixed), "True", "FFFF"},
        {column(DataType::Decimal, 16, Fixed, 18, 4), "-1.2345",
         "0000 04 80 00000000 39300000 00000000"},
        {column(DataType::Decimal, 16, Fixed, 28, 28), "0.9999999999999999999999999999",
         "0000 1C 00 5ECE4F20 FFFFFF0F 6102253E"},
        {column(DataType::TinyInt, 1, Fixed), "-128", "80"},
        {column(DataType::UnsignedTinyInt, 1, Fixed), "255", "FF"},
        {column(DataType::UnsignedSmallInt, 2, Fixed), "65535", "FFFF"},
        {column(DataType::UnsignedInt, 4, Fixed), "4294967295", "FFFFFFFF"},
        {column(DataType::BigInt, 8, Fixed), "-2147483649", "FFFFFF7FFFFFFFFF"},
        {column(DataType::UnsignedBigInt, 8, Fixed), "9223372036854775808", "0000000000000080"},
        {column(DataType::FileTime, 8, Fixed), "1999-12-31 23:59:58", "00133C24EB53BF01"},
        {column(DataType::Guid, 16, Fixed), "{01234567-89AB-CDEF-0123-456789ABCDEF}",
         "67452301 AB89 EFCD 0123 456789ABCDEF"},
        {column(DataType::Binary, 8, Fixed), "12345678", "'12345678'"},
        {column(DataType::Binary, 64, 0), "1234", "04 '1234'"},
        {column(DataType::Char, 12, Fixed), "fixed", "'fixed       '"},
        {column(DataType::Char, 120, 0), "한글", "04 C7D1B1DB"},
        {column(DataType::Char, 256, 0), "한글", "04000000 C7D1B1DB"},
        {column(DataType::Char, NoLimit, columnflag::Long), "", "00000000"},
        {column(DataType::WChar, 120, 0), "한글", "04 5CD500AE"},
        {column(DataType::WChar, 128, 0), "a", "02000000 u'a'"},
        {column(DataType::WChar, 1073741823, columnflag::Long), "a", "02000000 u'a'"},
        {column(DataType::WChar, 3, Fixed), "a", "u'a  '"},
        {column(DataType::Numeric, 19, Fixed, 18, 4), "-1.2345",
         "120400 39300000000000000000000000000000"},
        {column(DataType::Numeric, 19, Fixed, 18, 4), "0",
         "120401 00000000000000000000000000000000"},
        {column(DataType::Numeric, 19, Fixed, 38, 0), "99999999999999999999999999999999999999",
         "260001 FFFFFFFF3F228A097AC4865AA84C3B4B"},
        {column(DataType::VarNumeric, 8, 0, 5, 0xFF), "1234.5", "05 05 01 01 3930"},
        {column(DataType::DBDate, 6, Fixed), "1999-12-31", "CF070C001F00"},
        {column(DataType::DBTime, 6, Fixed), "23:59:58", "17003B003A00"},
        {column(DataType::DBTimeStamp, 16, Fixed), "1999-12-31 23:59:58",
         "CF070C001F0017003B003A0000000000"},
    };
}

TEST(Tablegram, CellsHaveTheBytesThatServersWrite) {
    for (CellCase c : cellCases()) {
        SCOPED_TRACE(c.text + " as " + c.wire);
        c.wire = bytes(c.wire);
        EXPECT_EQ(hex(cell(c.descriptor, Value::text(c.text))), hex(c.wire));
        expectToRead(c);
    }
}

TEST(Tablegram, CellsThatServersWriteAreRead) {
    const std::string large(300, 'D');
    const std::vector<CellCase> cases{
        {column(DataType::Date, 8, Fixed), "1999-12-31 23:59:58", bytes("6F74CFFFBFD5E140")},
        {column(DataType::Date, 8, Fixed), "1899-12-30 00:00:00", bytes("0000000000000000")},
        // Fixed columns over 255 bytes, with the prefix and without.
        {column(DataType::Char, 300, Fixed), large, bytes("2C010000") + large},
        {column(DataType::Char, 300, Fixed), large, large},
        {column(DataType::Char, 6, Fixed), "ab", bytes("'ab' 00 'xyz'")},
        {column(DataType::Numeric, 19, Fixed), "500",
         bytes("12FE01 05000000000000000000000000000000")},
        {column(DataType::VarNumeric, 8, 0), "0", bytes("03 050001")},
    };
    for (const CellCase& c : cases) {
        SCOPED_TRACE(hex(c.wire.substr(0, 20)));
        expectToRead(c);
    }
}

TEST(Tablegram, VariantCellsHoldWhatTheySay) {
    const ColumnDescriptor variant = column(DataType::Variant, 16, Fixed);
    const std::vector<std::pair<const char*, const char*>> cases{
        // What lies between type and value, and behind it, is whatever was in memory.
        {"0000 AAAAAAAAAAAA AAAAAAAAAAAAAAAA", ""},
        {"0100 AAAAAAAAAAAA AAAAAAAAAAAAAAAA", ""},
        {"0200 AAAAAAAAAAAA FEFFAAAAAAAAAAAA", "-2"},
        {"0300 AAAAAAAAAAAA 07000000AAAAAAAA", "7"},
        {"0400 AAAAAAAAAAAA 0000C0BFAAAAAAAA", "-1.5"},
        {"0500 AAAAAAAAAAAA 000000000000F43F", "1.25"},
        {"0600 AAAAAAAAAAAA EFD8FFFFFFFFFFFF", "-1.0001"},
        {"0700 AAAAAAAAAAAA 0000000000000240", "1900-01-01 06:00:00"},
        {"0B00 AAAAAAAAAAAA FFFFAAAAAAAAAAAA", "True"},
        {"0E00 0180 00000000 0F000000 00000000", "-1.5"},
        {"1000 AAAAAAAAAAAA 80AAAAAAAAAAAAAA", "-128"},
        {"1100 AAAAAAAAAAAA FFAAAAAAAAAAAAAA", "255"},
        {"1200 AAAAAAAAAAAA FFFFAAAAAAAAAAAA", "65535"},
        {"1300 AAAAAAAAAAAA FFFFFFFFAAAAAAAA", "4294967295"},
        {"1400 AAAAAAAAAAAA FFFFFF7FFFFFFFFF", "-2147483649"},
        {"1500 AAAAAAAAAAAA 0000000000000080", "9223372036854775808"},
        {"1600 AAAAAAAAAAAA FFFFFFFFAAAAAAAA", "-1"},
        {"1700 AAAAAAAAAAAA FFFFFFFFAAAAAAAA", "4294967295"},
    };
    for (const auto& [wire, text] : cases) {
        SCOPED_TRACE(wire);
        const CellCase c{variant, text, bytes(wire)};
        expectToRead(c);
        // In our own form it is as much the same value.
        data::Arena arena;
        ByteReader in(c.wire);
        const Value value = CellDecoder(variant).decode(in, CodePage(949), arena);
        if (!value.isNull())
            expectToRead({variant, text, cell(variant, value)});
    }
}

TEST(Tablegram, CellsThatCannotBeAreRefused) {
    const std::vector<std::pair<ColumnDescriptor, const char*>> cases{
        {column(DataType::Variant, 16, Fixed), "0800 000000000000 0000000000000000"},
        {column(DataType::Decimal, 16, Fixed), "0000 1D 00 00000000 01000000 00000000"},
        {column(DataType::VarNumeric, 20, 0), "14 050001 0102030405060708090A0B0C0D0E0F1011"},
        {column(DataType::VarNumeric, 20, 0), "02 0500"},
        {column(DataType::VarNumeric, 20, 0), "04 268000 01"},  // with 128 zeros behind it
        {column(DataType::Date, 8, Fixed), "FFFFFFFF80924641"}, // would be rounded to the same
        {column(DataType::DBDate, 6, Fixed), "E807 0D00 0100"},
        {column(DataType::DBTime, 6, Fixed), "1800 0000 0000"},
        {column(DataType::DBTimeStamp, 16, Fixed), "E807 0100 0100 0000 0000 0000 00CA9A3B"},
        {column(DataType::Date, 8, Fixed), "000000000000F87F"}, // not a number
        {column(DataType::Date, 8, Fixed), "0000000080924641"}, // 10000-01-01
        {column(DataType::FileTime, 8, Fixed), "FFFFFFFFFFFFFFFF"},
        {column(DataType::WChar, 20, 0), "03 414243"},
        {column(DataType::Char, NoLimit, 0), "FFFFFFFF 41"},
    };
    for (const auto& [descriptor, wire] : cases) {
        const std::string content = bytes(wire);
        ByteReader in(content);
        data::Arena arena;
        const auto decode = [&, &d = descriptor] {
            CellDecoder(d).decode(in, CodePage(949), arena);
        };
        EXPECT_EQ(tests::errorOf(decode).Number(), data::number::Unspecified) << wire;
    }
}

TEST(Tablegram, ValuesAreConvertedToTheirColumnOrRefused) {
    const ColumnDescriptor integer = column(DataType::Integer, 4, Fixed);
    EXPECT_EQ(hex(cell(integer, Value::real(2.5))), "03000000");
    EXPECT_EQ(hex(cell(integer, Value::decimal("-7.49"))), "F9FFFFFF");
    EXPECT_EQ(hex(cell(integer, Value::integer(-2147483648LL))), "00000080");
    EXPECT_EQ(hex(cell(column(DataType::Single, 4, Fixed), Value::integer(-1))), "000080BF");
    EXPECT_EQ(hex(cell(column(DataType::Char, 20, 0), Value::real(0.1))), "03302E31");
    EXPECT_EQ(hex(cell(column(DataType::Numeric, 19, Fixed, 9, 2), Value::real(0.125))),
              "0902010D000000000000000000000000000000");
    const ColumnDescriptor date = column(DataType::Date, 8, Fixed);
    EXPECT_EQ(hex(cell(date, Value::dateTime({1899, 12, 29, 12, 0, 0, 0}))), "000000000000F8BF");
    EXPECT_EQ(hex(cell(date, Value::dateTime({1899, 12, 28, 23, 59, 60, 0}))), "000000000000F0BF");
    EXPECT_EQ(hex(cell(column(DataType::Numeric, 19, Fixed, 9, 2), Value::decimal("-0.004"))),
              "09020100000000000000000000000000000000")
        << "zero has no sign";
    const Value tiny = Value::decimal("0.00000000000000000000000000000000000001");
    EXPECT_EQ(hex(cell(column(DataType::Numeric, 19, Fixed, 9, 90), tiny)),
              "09260101000000000000000000000000000000")
        << "more decimals than a reader takes";
    EXPECT_EQ(hex(cell(column(DataType::Variant, 16, Fixed), Value::single(0.1F))),
              "0400000000000000CDCCCC3D00000000")
        << "as a double it would read as 0.10000000149011612";
    const std::string wide =
        cell(column(DataType::Numeric, 19, Fixed, 65, 30), Value::decimal("123456789012.5"));
    EXPECT_EQ(hex(wide.substr(0, 9)), "410101CD04FB711F01") << "no room for 30 decimals";
    // A text may be longer than declared as long as its length has room in the prefix.
    EXPECT_EQ(cell(column(DataType::Char, 3, 0), Value::text("가나다")).size(), 7U);

    const std::string longText(256, 'x');
    const std::vector<std::pair<ColumnDescriptor, Value>> refused{
        {integer, Value::integer(2147483648LL)},
        {integer, Value::text("twelve")},
        {integer, Value::text("")},
        {integer, Value::date({2020, 1, 1, 0, 0, 0, 0})},
        {column(DataType::UnsignedInt, 4, Fixed), Value::integer(-1)},
        {column(DataType::BigInt, 8, Fixed), Value::unsignedInteger(1ULL << 63U)},
        {column(DataType::Single, 4, Fixed), Value::real(1e300)},
        {column(DataType::Currency, 8, Fixed), Value::decimal("922337203685477.5808")},
        {column(DataType::Decimal, 16, Fixed, 28, 0),
         Value::decimal("79228162514264337593543950336")},
        {column(DataType::DBDate, 6, Fixed), Value::text("2020-13-01")},
        {column(DataType::DBDate, 6, Fixed), Value::integer(20200101)},
        {column(DataType::Date, 8, Fixed), Value::date({2021, 2, 29, 0, 0, 0, 0})},
        {column(DataType::Guid, 16, Fixed), Value::text("{0123}")},
        {column(DataType::Binary, 8, 0), Value::integer(1)},
        {column(DataType::Variant, 16, Fixed), Value::text("a")},
        {column(DataType::Char, 3, Fixed), Value::text("가나")},
        {column(DataType::WChar, 2, Fixed), Value::text("abc")},
        {column(DataType::Char, 20, 0), Value::text(longText)},
    };
    for (const auto& [descriptor, value] : refused)
        EXPECT_THROW(cell(descriptor, value), data::Error)
            << static_cast<int>(descriptor.type) << ' ' << value.toText();
}

TEST(Tablegram, EveryColumnTypeTravelsWithAndWithoutNull) {
    std::vector<CellCase> cases = cellCases();
    cases.push_back({column(DataType::BStr, 40, 0), "문자열", ""});
    cases.push_back({column(DataType::Date, 8, Fixed), "2001-02-03 04:05:06", ""});
    for (const bool nullable : {false, true}) {
        data::FieldList fields;
        RowsCursor::Row full;
        for (const CellCase& c : cases) {
            fields.push_back({"열" + std::to_string(fields.size()),
                              c.descriptor.type,
                              40,
                              0xFF,
                              0xFF,
                              nullable,
                              false,
                              false,
                              {}});
            full.push_back(Value::text(c.text));
        }
        fields.push_back({"변", DataType::Variant, 0, 0xFF, 0xFF, nullable, false, false, {}});
        full.push_back(Value::integer(9));
        const RowsCursor::Row second = nullable ? RowsCursor::Row(full.size()) : full;
        data::Recordset recordset = read(written(describe(fields), {full, second}));
        ASSERT_EQ(recordset.RecordCount(), 2);
        for (const RowsCursor::Row& row : {full, second}) {
            for (std::size_t i = 0; i < row.size(); ++i) {
                SCOPED_TRACE(i);
                EXPECT_EQ(recordset.Fields()[i].Name, fields[i].Name);
                EXPECT_EQ(recordset.Fields()[i].nullable, nullable);
                EXPECT_EQ(recordset.Item(i).isNull(), row[i].isNull());
                EXPECT_EQ(recordset.Item(i).toText(), row[i].toText());
            }
            recordset.MoveNext();
        }
    }
    TablegramMetadata notNullable;
    notNullable.columns = {column(DataType::Integer, 4, Fixed)};
    EXPECT_THROW(written(notNullable, {{Value()}}), data::Error);
}

TEST(Tablegram, FieldsAreDescribedAsServersDoIt) {
    using Numbers = std::vector<std::uint32_t>;
    const auto described = [](DataType type, std::uint32_t size, bool nullable, bool fixedLength,
                              bool longValue) -> Numbers {
        const ColumnDescriptor result =
            describe({{"F", type, size, 0xFF, 0xFF, nullable, fixedLength, longValue, {}}})
                .columns[0];
        return {result.maxLength, result.precision, result.flags};
    };
    EXPECT_EQ(described(DataType::Integer, 0, false, false, false), (Numbers{4, 10, 0x10}));
    EXPECT_EQ(described(DataType::DBTimeStamp, 0, true, true, false), (Numbers{16, 23, 0x70}));
    EXPECT_EQ(described(DataType::Char, 20, true, false, false), (Numbers{20, 255, 0x60}));
    EXPECT_EQ(described(DataType::Char, 20, false, true, false), (Numbers{20, 255, 0x10}));
    EXPECT_EQ(described(DataType::WChar, 9, true, true, true), (Numbers{9, 255, 0xE0}));
    EXPECT_EQ(described(DataType::Binary, 0, true, false, false), (Numbers{NoLimit, 255, 0xE0}));
    EXPECT_THROW(described(DataType::Error, 4, true, true, false), data::Error);
    EXPECT_THROW(described(DataType::Chapter, 4, true, true, false), data::Error);
}

/// Two hidden columns around three visible ones: a key and a time stamp of the server.
TablegramMetadata mixedMetadata() {
    TablegramMetadata metadata;
    metadata.columns = {column(DataType::Integer, 4, Fixed), column(DataType::WChar, 20, Nulls),
                        column(DataType::Integer, 4, Fixed | columnflag::MayBeNull),
                        column(DataType::Binary, 8, Fixed), column(DataType::Char, 5, Nulls)};
    metadata.columns[3].visible = false;
    metadata.columns[4].visible = false;
    return metadata;
}

/// A tablegram of mixedMetadata() with rows spelled in hex.
std::string mixedRows(const char* rows, std::uint32_t count = 0) {
    TablegramMetadata metadata = mixedMetadata();
    metadata.rowCount = count;
    std::string result = written(metadata, {});
    result.pop_back();
    return result + bytes(rows) + '\x0F';
}

TEST(Tablegram, TextsOfADatabaseHaveRoomForAllTheirCharacters) {
    std::string emoji, hangul;
    for (int i = 0; i < 100; ++i) {
        emoji += "😀";
        hangul += "가나";
    }
    data::FieldList fields(3);
    fields[0].Type = fields[2].Type = DataType::WChar;
    fields[0].DefinedSize = 100;
    fields[1].Type = DataType::Char;
    fields[1].DefinedSize = 200;
    fields[2].DefinedSize = 0xA0000000;
    const RowsCursor::Row row{Value::text(emoji), Value::text(hangul), Value::text("long")};
    const data::Recordset recordset = read(written(describeResult(fields), {row}));
    EXPECT_EQ(recordset.Item(0).bytes(), emoji);
    EXPECT_EQ(recordset.Item(1).bytes(), hangul);
    EXPECT_EQ(recordset.Fields()[0].DefinedSize, 200U);
    EXPECT_EQ(recordset.Fields()[2].DefinedSize, NoLimit);
}

TEST(Tablegram, PendingChangesAreTakenAsMade) {
    using ::testing::ElementsAre;
    const char* const original = "07 FF 01000000 02 u'a' 05000000 '12345678' 00";
    const auto rows = [&](const std::string& more) {
        return cells(read(mixedRows((original + more).c_str())));
    };
    EXPECT_THAT(rows(""), ElementsAre("1", "a", "5"));
    EXPECT_THAT(rows("0C"), ElementsAre());
    EXPECT_THAT(rows("0A 40 20 02 u'b'"), ElementsAre("1", "b", "-"));
    EXPECT_THAT(rows("0A 60 60"), ElementsAre("1", "-", "-")) << "both bits are Null too";
    EXPECT_THAT(rows("0A 10 00 '87654321' 07 1F 02000000 '12345678'"),
                ElementsAre("1", "a", "5", "2", "-", "-"));
    EXPECT_THAT(rows("0D D8 20 03000000 02 u'c' '12345678' 01 'x'"),
                ElementsAre("1", "a", "5", "3", "c", "-"));
    EXPECT_THAT(rows("0C 07 FF 04000000 00 07000000 '12345678' 00 0D 80 00 09000000"),
                ElementsAre("4", "", "7", "9", "-", "-"));
    EXPECT_EQ(read(mixedRows(original)).Fields().size(), 3U) << "hidden columns are left out";
    EXPECT_TRUE(read(mixedRows("")).Eof());

    for (const char* wrong : {"0A 00 00", "0C", "0D 80 00 09000000 0C", "06", "00"})
        EXPECT_TRUE(isRefused(mixedRows(wrong))) << wrong;
    EXPECT_TRUE(isRefused(mixedRows((std::string(original) + "0C 0C").c_str())));
    EXPECT_TRUE(isRefused(mixedRows("07 FF 01000000 01 'a' 05000000 '12345678' 00")))
        << "half a wide character";
}

TEST(Tablegram, TheEndTokenAndNotTheCountEndsTheRows) {
    const char* const rows = "07 1F 01000000 '12345678' 07 1F 02000000 '12345678'";
    // 1: what a fetching server had by then; 5: what there were before a filter.
    for (const std::uint32_t count : {0U, 1U, 2U, 5U, 0xFFFFFFFFU}) {
        const std::string whole = mixedRows(rows, count);
        EXPECT_EQ(read(whole).RecordCount(), 2) << count;
        for (std::size_t size = 0; size < whole.size(); ++size)
            ASSERT_TRUE(isRefused(whole.substr(0, size))) << size << " of " << whole.size();
    }
    EXPECT_TRUE(read(mixedRows("", 1)).Eof());
}

TEST(Tablegram, OtherKindsOfTablegramAreRefused) {
    using ::testing::HasSubstr;
    const std::string plain = mixedRows("");
    const auto messageOf = [](const std::string& tablegram) {
        return tests::errorTextOf([&] { read(tablegram); });
    };
    EXPECT_FALSE(isRefused(plain));
    const std::vector<std::string> reasons{"no tablegram", "short header", "no tablegram",
                                           "no tablegram", "no tablegram", "version 3.0",
                                           "version 0.3",  "big-endian",   "Unicode"};
    for (std::size_t i = 0; i < reasons.size(); ++i) {
        std::string changed = plain;
        changed[i] = '\x03';
        EXPECT_THAT(messageOf(changed), HasSubstr(reasons[i])) << i;
    }
    for (const char* hierarchical :
         {"0300", "8701000000", "8A01000000", "8C01000000", "8D01000000"})
        EXPECT_THAT(messageOf(mixedRows(hierarchical)), HasSubstr("is hierarchical"));

    const std::vector<ColumnDescriptor> unreadable{
        column(DataType::Chapter, 4, Fixed),
        column(DataType::Integer, 4, Fixed | columnflag::Chapter),
        column(DataType::Error, 4, Fixed),
        column(static_cast<DataType>(0x2003), 4, 0),
        column(DataType::Empty, 0, Fixed),
        column(DataType::Char, 0, Fixed),
        column(DataType::Char, 20, Fixed | columnflag::Long),
    };
    TablegramMetadata metadata;
    metadata.columns = {column(DataType::Integer, 4, Fixed)};
    const std::string one = written(metadata, {});
    const std::string descriptor = bytes("0300 04000000 FF000000 FF000000 10000000 0000FFFF");
    const std::size_t at = one.find(descriptor);
    ASSERT_NE(at, std::string::npos);
    for (const ColumnDescriptor& c : unreadable) {
        ByteWriter out;
        out.u16(static_cast<std::uint16_t>(c.type));
        out.u32(c.maxLength);
        out.u64(0);
        out.u32(c.flags);
        std::string changed = one;
        EXPECT_TRUE(isRefused(changed.replace(at, out.size(), out.view())))
            << static_cast<int>(c.type);
    }
    metadata.columns.assign(4097, metadata.columns[0]);
    EXPECT_TRUE(isRefused(written(metadata, {}))) << "too many columns";
    metadata.columns.resize(1);
    metadata.columns[0].visible = false;
    EXPECT_TRUE(isRefused(written(metadata, {}))) << "hidden columns only";
    metadata.columns.clear();
    EXPECT_TRUE(isRefused(written(metadata, {}))) << "no columns";
}

TEST(Tablegram, UnknownMetadataIsSkipped) {
    // Every block gets a tail, and the first column all the rare parts that it may have.
    const std::string plain = mixedRows("07 1F 01000000 '12345678'", 1);
    for (const char* searchable : {"0000", "00000000"}) {
        std::string changed = plain.substr(0, 9);
        std::size_t at = 9;
        bool first = true;
        while (plain[at] != '\x07') {
            const auto size = static_cast<unsigned char>(plain[at + 1]) +
                              256U * static_cast<unsigned char>(plain[at + 2]);
            std::string content = plain.substr(at + 3, size);
            if (plain[at] == '\x06' && first) {
                first = false;
                content.replace(0, 3, bytes("80F1F8"));
                content.insert(content.size() - 4, std::string(28, '\x11'));
                content.insert(content.size() - 2,
                               bytes("00000000") + bytes(searchable) + bytes("0000 00000000"));
            } else {
                content += "tail";
            }
            changed += plain[at];
            changed += static_cast<char>(content.size());
            changed += static_cast<char>(content.size() >> 8U);
            changed += content;
            at += 3 + size;
        }
        const data::Recordset recordset = read(changed + plain.substr(at));
        EXPECT_EQ(recordset.Fields().size(), 3U);
        EXPECT_EQ(recordset.Item(0).asInteger(), 1);
    }
}

} // namespace
