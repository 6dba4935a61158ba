#include "rds/Variant.h"

#include "data/Error.h"
#include "rds/VariantCodec.h"
#include "tests/support/Hex.h"

#include <gmock/gmock.h>

#include <array>
#include <string>
#include <vector>

namespace {

using namespace quillet;
using namespace quillet::rds;
using quillet::tests::bytes;
using quillet::tests::hex;

std::string encoded(const Variant& value) {
    ByteWriter out;
    encodeValue(value, out);
    return out.take();
}

Variant decoded(const std::string& wire) {
    ByteReader in(wire);
    Variant value = VariantDecoder(in).next();
    EXPECT_EQ(in.remaining(), 0U) << hex(wire);
    return value;
}

Variant array(VarType type, std::vector<VariantArray::Dimension> dimensions,
              std::vector<Variant> elements) {
    return Variant(VariantArray{type, false, std::move(dimensions), std::move(elements)});
}

TEST(Variant, EveryTypeHasItsBytesAndItsText) {
    struct Case {
        Variant value;
        const char* wire;
        const char* text; ///< nullptr: not asked for
    };
    const std::vector<Case> cases{
        {Variant(), "0000", ""},
        {Variant(std::int16_t{-2}), "0200FEFF", "-2"},
        {Variant(std::int32_t{1033}), "030009040000", "1033"},
        {Variant(-1.5F), "04000000C0BF", "-1.5"},
        {Variant(1.25), "0500000000000000F43F", "1.25"},
        {Variant(Currency{-10001}), "0600EFD8FFFFFFFFFFFF", "-1.0001"},
        {Variant(Date{2.25}), "07000000000000000240", "1900-01-01 06:00:00"},
        {Variant(Date{-1.5}), "0700000000000000F8BF", "1899-12-29 12:00:00"},
        {Variant::string("한"), "0800020000005CD5", "한"},
        {Variant::string(""), "08000000000000", ""},
        {Variant(BStr{}), "08000000000001", ""},
        {Variant(true), "0B00FFFF", "True"},
        {Variant(false), "0B000000", "False"},
        {Variant(Decimal{4, true, 0, 12345, 0}), "0E00000004800000000039300000 00000000",
         "-1.2345"},
        {Variant(std::uint8_t{255}), "1100FF", "255"},
        {Variant(ScodeError{1, 0, {}, {}, {}}), "0A0001000000", nullptr},
        {Variant(ScodeError{0x80020009, 5, BStr{"a"}, BStr{""}, BStr{}}),
         "0A00 09000280 05000000 02000000 u'a' 0000000000 0000000001", nullptr},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.wire);
        EXPECT_EQ(hex(encoded(c.value)), hex(bytes(c.wire)));
        EXPECT_EQ(decoded(bytes(c.wire)), c.value);
        const Variant twice = array(c.value.type(), {{2, 1}}, {c.value, c.value});
        EXPECT_EQ(decoded(encoded(twice)),
                  c.value.isEmpty() ? array(VarType::Empty, {{2, 1}}, {}) : twice);
        if (c.text != nullptr) {
            EXPECT_EQ(c.value.toText(), c.text);
        }
    }
    EXPECT_THROW(Variant(Null{}).toText(), data::Error);
    EXPECT_THROW(Variant(Dispatch{}).toText(), data::Error);
    EXPECT_THROW(Variant::strings({}).toText(), data::Error);
}

TEST(Variant, ArraysKeepShapeAndTypeOfTheirElements) {
    const Variant strings = Variant::strings({"a", "", "한글"});
    std::string wire =
        bytes("0820 00 0100 8001 04000000 03000000 00000000 02000000 u'a' 0000000000 04000000"
              "5CD500AE");
    EXPECT_EQ(hex(encoded(strings)), hex(wire));
    wire[5] = '\x28'; // the features are a hint that senders do not agree on
    EXPECT_EQ(decoded(wire), strings);

    const Variant table = array(VarType::Bool, {{2, 1}, {1, -1}}, {true, false});
    EXPECT_EQ(hex(encoded(table)), hex(bytes("0B20 00 0200 8000 02000000 0200000001000000"
                                             "01000000FFFFFFFF FFFF0000")));
    const Variant nested =
        array(VarType::Variant, {{3, 0}}, {table, Variant(Dispatch{}), Variant(std::int16_t{1})});
    const Variant isNull(VariantArray{VarType::UI1, true, {}, {}});
    const Variant empty = array(VarType::BStr, {{0, 0}, {4000000000U, 0}}, {});
    const Variant blank = array(VarType::Empty, {{4000000000U, 0}}, {});
    const Variant objects = array(VarType::Dispatch, {{1, 0}}, {Variant(Dispatch{})});
    const Variant unknown = array(VarType::Unknown, {{1, 0}}, {Variant(Dispatch{})});
    for (const Variant& value : {strings, table, nested, isNull, empty, blank, objects, unknown})
        EXPECT_EQ(decoded(encoded(value)), value) << hex(encoded(value));
    EXPECT_THROW(encoded(array(VarType::I4, {{1, 0}}, {Variant::string("1")})), data::Error);
}

TEST(Variant, RecordsetsTravelAsArguments) {
    auto recordset = std::make_shared<data::Recordset>(data::FieldList(1));
    recordset->addRow(std::array{data::Value::boolean(true)});
    recordset->addRow(std::array{data::Value()});
    const Variant sent(Dispatch{recordset});
    for (int round = 0; round < 2; ++round) { // writing leaves it as it was
        const Variant received = decoded(encoded(sent));
        data::Recordset& copy = *std::get<Dispatch>(received).recordset;
        ASSERT_EQ(copy.RecordCount(), 2);
        EXPECT_EQ(copy.Item(0).toText(), "True");
        copy.MoveNext();
        EXPECT_TRUE(copy.Item(0).isNull());
    }
}

TEST(Variant, HostileValuesAreRefusedBeforeTheyTakeMemory) {
    std::string deep;
    for (int i = 0; i < 18; ++i)
        deep += bytes("0C20 00 0100 8008 10000000 01000000 00000000");
    // Sixteen levels that each claim as much as the message could just hold.
    std::string greedy;
    for (int i = 0; i < 16; ++i)
        greedy += bytes("0C20 00 0100 8008 10000000 FFFF0700 00000000");
    greedy.resize(greedy.size() + 0x100000 * 2);
    // Over the limit of values.
    const std::string many =
        bytes("1120 00 0100 8000 01000000 00002000 00000000") + std::string(0x200000, '\0');
    const std::vector<std::string> hostile{
        many,
        deep + bytes("0000"),
        greedy,
        bytes("0C20 00 0100 8008 10000000 FFFFFFFF 00000000 0000"),
        bytes("0220 00 0400 8000 02000000 00000100 00000000 00000100 00000000"
              "00000100 00000000 00000100 00000000 0000"),
        bytes("0820 00 FFFF 8001 04000000"),
        bytes("0820 00 0000 8001 04000000"),
        bytes("0800 FFFFFF7F u'a'"),
        bytes("0800 01000000 61"), // half a character
        bytes("0E00 0000 1D 00 00000000 00000000 00000000"),
        bytes("0C00"), // a variant outside of an array
        bytes("0D0A"),
        bytes("0940"),
    };
    for (const std::string& wire : hostile) {
        ByteReader in(wire);
        EXPECT_THROW(VariantDecoder(in).next(), data::Error) << hex(wire.substr(0, 64));
    }
}

} // namespace
