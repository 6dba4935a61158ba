#include "rds/tablegram/CellDecoder.h"

#include "data/Utf16.h"
#include "rds/tablegram/OleDate.h"
#include "rds/tablegram/WideDecimal.h"

#include <array>
#include <bit>
#include <cstdlib>

namespace quillet::rds {

namespace {

using data::DataType;
using data::Value;

Value keep(const WideDecimal& number, data::Arena& arena) {
    std::array<char, WideDecimal::MaxText> text{};
    const std::size_t size = number.format(text.data());
    return Value::decimal(arena.copy({text.data(), size}));
}

Value currency(std::int64_t scaled, data::Arena& arena) {
    WideDecimal number;
    number.negative = scaled < 0;
    const auto magnitude = number.negative ? std::uint64_t{0} - static_cast<std::uint64_t>(scaled)
                                           : static_cast<std::uint64_t>(scaled);
    number.limbs = {static_cast<std::uint32_t>(magnitude),
                    static_cast<std::uint32_t>(magnitude >> 32U), 0, 0};
    number.scale = 4;
    return keep(number, arena);
}

/// The 14 bytes behind the two that mean nothing.
Value decimal(ByteReader& in, data::Arena& arena) {
    WideDecimal number;
    number.scale = in.u8();
    number.negative = in.u8() != 0;
    number.limbs[2] = in.u32();
    number.limbs[0] = in.u32();
    number.limbs[1] = in.u32();
    if (number.scale > 28)
        throw badReply("a decimal number has a scale over 28");
    return keep(number, arena);
}

Value numeric(ByteReader in, data::Arena& arena) {
    WideDecimal number;
    in.skip(1); // precision
    number.scale = static_cast<int>(std::bit_cast<std::int8_t>(in.u8()));
    number.negative = in.u8() == 0;
    const std::string_view magnitude = in.rest();
    if (magnitude.size() > 16)
        throw badReply("a number has over 128 bits");
    if (std::abs(number.scale) > WideDecimal::MaxScale)
        throw badReply("a number has a scale over 38");
    for (std::size_t i = 0; i < magnitude.size(); ++i)
        number.limbs[i / 4] |= std::uint32_t{static_cast<unsigned char>(magnitude[i])}
                               << (i % 4 * 8);
    return keep(number, arena);
}

[[noreturn]] void failDate() {
    throw badReply("a date or time does not exist");
}

/// @param read dateTimeOfOleDate or dateTimeOfFileTime.
template <typename Number>
Value moment(data::DateTime (*read)(Number), Number number) {
    try {
        return Value::dateTime(read(number));
    } catch (const data::Error&) {
        failDate();
    }
}

std::uint8_t part(std::uint16_t value, unsigned last) {
    if (value > last)
        failDate();
    return static_cast<std::uint8_t>(value);
}

void readDate(ByteReader& in, data::DateTime& value) {
    value.year = in.i16();
    value.month = part(in.u16(), 12);
    value.day = part(in.u16(), 31);
}

void readTime(ByteReader& in, data::DateTime& value) {
    value.hour = part(in.u16(), 23);
    value.minute = part(in.u16(), 59);
    value.second = part(in.u16(), 61); // leap seconds
}

Value dbDate(ByteReader& in) {
    data::DateTime value;
    readDate(in, value);
    return Value::date(value);
}

Value dbTime(ByteReader& in) {
    data::DateTime value;
    readTime(in, value);
    return Value::time(value);
}

Value dbTimeStamp(ByteReader& in) {
    data::DateTime value;
    readDate(in, value);
    readTime(in, value);
    value.nanosecond = in.u32();
    if (value.nanosecond > 999'999'999)
        failDate();
    return Value::dateTime(value);
}

/// A VARIANT as it lies in memory: type, six bytes that mean nothing, eight of value. A decimal
/// takes the place of all but the type.
Value variant(ByteReader in, data::Arena& arena) {
    constexpr std::uint16_t Null = 1;
    constexpr std::uint16_t Int = 0x16;
    constexpr std::uint16_t UInt = 0x17;
    const std::uint16_t type = in.u16();
    if (type == static_cast<std::uint16_t>(DataType::Decimal))
        return decimal(in, arena);
    in.skip(6);
    switch (type) {
    case static_cast<std::uint16_t>(DataType::Empty):
    case Null:
        return {};
    case static_cast<std::uint16_t>(DataType::SmallInt):
        return Value::integer(in.i16());
    case static_cast<std::uint16_t>(DataType::Integer):
    case Int:
        return Value::integer(in.i32());
    case static_cast<std::uint16_t>(DataType::Single):
        return Value::single(in.r4());
    case static_cast<std::uint16_t>(DataType::Double):
        return Value::real(in.r8());
    case static_cast<std::uint16_t>(DataType::Currency):
        return currency(in.i64(), arena);
    case static_cast<std::uint16_t>(DataType::Date):
        return moment(dateTimeOfOleDate, in.r8());
    case static_cast<std::uint16_t>(DataType::Boolean):
        return Value::boolean(in.u16() != 0);
    case static_cast<std::uint16_t>(DataType::TinyInt):
        return Value::integer(static_cast<std::int8_t>(in.u8()));
    case static_cast<std::uint16_t>(DataType::UnsignedTinyInt):
        return Value::integer(in.u8());
    case static_cast<std::uint16_t>(DataType::UnsignedSmallInt):
        return Value::integer(in.u16());
    case static_cast<std::uint16_t>(DataType::UnsignedInt):
    case UInt:
        return Value::integer(in.u32());
    case static_cast<std::uint16_t>(DataType::BigInt):
        return Value::integer(in.i64());
    case static_cast<std::uint16_t>(DataType::UnsignedBigInt):
        return Value::unsignedInteger(in.u64());
    default:
        throw badReply("a variant holds the type " + std::to_string(type));
    }
}

} // namespace

CellDecoder::CellDecoder(const ColumnDescriptor& column)
    : type_(column.type), layout_(cellLayout(column)) {
    // Rows that take no bytes would let a short reply ask for any amount of memory.
    if (layout_.prefix == CellLayout::Prefix::None && layout_.size == 0)
        throw badReply("the column " + column.name + " has no size");
}

std::string_view CellDecoder::variableBytes(ByteReader& in) const {
    switch (layout_.prefix) {
    case CellLayout::Prefix::None:
        return in.bytes(layout_.size);
    case CellLayout::Prefix::OneByte:
        return in.bytes(in.u8());
    case CellLayout::Prefix::FourBytes:
        break;
    }
    if (layout_.fixed) {
        // Documents and servers disagree whether these have the prefix; a prefix can only be the
        // size itself.
        ByteReader ahead = in;
        if (in.remaining() < 4 || ahead.u32() != layout_.size)
            return in.bytes(layout_.size);
    }
    return in.bytes(in.u32());
}

Value CellDecoder::ansiText(std::string_view bytes, const CodePage& codePage,
                            data::Arena& arena) const {
    if (layout_.fixed) {
        bytes = bytes.substr(0, bytes.find('\0'));
        bytes = bytes.substr(0, bytes.find_last_not_of(' ') + 1);
    }
    if (bytes.empty())
        return Value::text("");
    const std::size_t room = 3 * bytes.size();
    char* text = arena.allocate(room);
    const std::size_t size = codePage.toUtf8(bytes, text);
    arena.giveBack(room - size);
    return Value::text({text, size});
}

Value CellDecoder::wideText(std::string_view bytes, data::Arena& arena) const {
    if (bytes.size() % 2 != 0)
        throw badReply("a wide text has an odd number of bytes");
    const std::size_t room = bytes.size() / 2 * 3;
    if (room == 0)
        return Value::text("");
    char* text = arena.allocate(room);
    std::size_t size = data::utf16LeToUtf8(bytes.data(), bytes.size() / 2, text);
    arena.giveBack(room - size);
    std::string_view result(text, size);
    if (layout_.fixed) {
        result = result.substr(0, result.find('\0'));
        result = result.substr(0, result.find_last_not_of(' ') + 1);
    }
    return Value::text(result);
}

Value CellDecoder::decode(ByteReader& in, const CodePage& codePage, data::Arena& arena) const {
    switch (type_) {
    case DataType::SmallInt:
        return Value::integer(in.i16());
    case DataType::Integer:
        return Value::integer(in.i32());
    case DataType::Single:
        return Value::single(in.r4());
    case DataType::Double:
        return Value::real(in.r8());
    case DataType::Currency:
        return currency(in.i64(), arena);
    case DataType::Date:
        return moment(dateTimeOfOleDate, in.r8());
    case DataType::Boolean:
        return Value::boolean(in.u16() != 0);
    case DataType::Variant:
        return variant(in.block(layout_.size), arena);
    case DataType::Decimal:
        in.skip(2);
        return decimal(in, arena);
    case DataType::TinyInt:
        return Value::integer(static_cast<std::int8_t>(in.u8()));
    case DataType::UnsignedTinyInt:
        return Value::integer(in.u8());
    case DataType::UnsignedSmallInt:
        return Value::integer(in.u16());
    case DataType::UnsignedInt:
        return Value::integer(in.u32());
    case DataType::BigInt:
        return Value::integer(in.i64());
    case DataType::UnsignedBigInt:
        return Value::unsignedInteger(in.u64());
    case DataType::FileTime:
        return moment(dateTimeOfFileTime, in.u64());
    case DataType::Guid:
        return Value::guid(arena.copy(in.bytes(layout_.size)));
    case DataType::Numeric:
        return numeric(in.block(layout_.size), arena);
    case DataType::VarNumeric:
        return numeric(ByteReader(variableBytes(in)), arena);
    case DataType::DBDate:
        return dbDate(in);
    case DataType::DBTime:
        return dbTime(in);
    case DataType::DBTimeStamp:
        return dbTimeStamp(in);
    case DataType::Binary:
        return Value::binary(arena.copy(variableBytes(in)));
    case DataType::Char:
        return ansiText(variableBytes(in), codePage, arena);
    case DataType::WChar:
    case DataType::BStr:
        return wideText(variableBytes(in), arena);
    case DataType::Empty:
    case DataType::Error:
    case DataType::Chapter:
        break;
    }
    throw badReply("a column has no values"); // cellLayout() has refused these types
}

} // namespace quillet::rds
