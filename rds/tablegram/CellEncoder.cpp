#include "rds/tablegram/CellEncoder.h"

#include "data/Error.h"
#include "rds/tablegram/OleDate.h"
#include "rds/tablegram/WideDecimal.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>

namespace quillet::rds {

namespace {

using data::DataType;
using data::Value;
using Kind = data::Value::Kind;

[[noreturn]] void failType(const std::string& what) {
    throw data::Error(data::number::TypeMismatch, what);
}

WideDecimal exact(const Value& value) {
    if (value.kind() == Kind::Boolean)
        return WideDecimal::parse(value.asBoolean() ? "-1" : "0");
    if (value.kind() == Kind::Decimal || value.kind() == Kind::Text)
        return WideDecimal::parse(value.bytes());
    return WideDecimal::parse(value.toText());
}

double real(const Value& value) {
    switch (value.kind()) {
    case Kind::Integer:
        return static_cast<double>(value.asInteger());
    case Kind::Unsigned:
        return static_cast<double>(value.asUnsigned());
    case Kind::Single:
    case Kind::Double:
        return value.asDouble();
    case Kind::Boolean:
        return value.asBoolean() ? -1 : 0;
    default:
        break;
    }
    const std::string text = value.toText();
    double result = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), result);
    if (error != std::errc() || end != text.data() + text.size())
        failType("'" + text + "' is no number.");
    return result;
}

bool boolean(const Value& value) {
    if (value.kind() == Kind::Text && (value.bytes() == "True" || value.bytes() == "False"))
        return value.bytes() == "True";
    return value.kind() == Kind::Boolean ? value.asBoolean() : real(value) != 0;
}

/// Takes digits and the separator behind them, if there is one, off the front of a text.
/// @param last the largest number that is right there.
unsigned takeNumber(std::string_view& text, unsigned last, char separator) {
    unsigned result = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), result);
    if (error != std::errc() || result > last)
        failType("A text is no date.");
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    if (separator != '\0') {
        if (!text.starts_with(separator))
            failType("A text is no date.");
        text.remove_prefix(1);
    }
    return result;
}

/// Reads YYYY-MM-DD, HH:MM:SS with an optional fraction, or both with a blank or "T" between.
data::DateTime parseDateTime(std::string_view text) {
    constexpr std::size_t DateSize = 10;
    constexpr std::size_t TimeSize = 8;
    data::DateTime result;
    result.year = 1899;
    result.month = 12;
    result.day = 30;
    if (text.size() >= DateSize && text[4] == '-') {
        result.year = static_cast<std::int16_t>(takeNumber(text, 9999, '-'));
        result.month = static_cast<std::uint8_t>(takeNumber(text, 12, '-'));
        result.day = static_cast<std::uint8_t>(takeNumber(text, 31, '\0'));
        if (text.empty())
            return result;
        if (text.front() != ' ' && text.front() != 'T')
            failType("A text is no date.");
        text.remove_prefix(1);
    }
    if (text.size() < TimeSize)
        failType("A text is no date.");
    result.hour = static_cast<std::uint8_t>(takeNumber(text, 23, ':'));
    result.minute = static_cast<std::uint8_t>(takeNumber(text, 59, ':'));
    result.second = static_cast<std::uint8_t>(takeNumber(text, 59, '\0'));
    if (text.starts_with('.')) {
        std::uint32_t unit = 100'000'000;
        for (const char c : text.substr(1)) {
            if (c < '0' || c > '9')
                failType("A text is no date.");
            result.nanosecond += static_cast<std::uint32_t>(c - '0') * unit;
            unit /= 10;
        }
    } else if (!text.empty()) {
        failType("A text is no date.");
    }
    return result;
}

data::DateTime dateTime(const Value& value) {
    switch (value.kind()) {
    case Kind::Date:
    case Kind::DateTime:
        return value.asDateTime();
    case Kind::Time: {
        data::DateTime result = value.asDateTime();
        result.year = 1899;
        result.month = 12;
        result.day = 30;
        return result;
    }
    case Kind::Text:
        return parseDateTime(value.bytes());
    default:
        failType("A value is no date.");
    }
}

/// 16 bytes from a value or from its usual text, with or without braces.
std::string guid(const Value& value) {
    if (value.kind() == Kind::Guid || (value.kind() == Kind::Binary && value.bytes().size() == 16))
        return std::string(value.bytes());
    std::string digits;
    for (const char c : value.kind() == Kind::Text ? value.bytes() : std::string_view()) {
        if (c != '-' && c != '{' && c != '}')
            digits += c;
    }
    constexpr std::array<std::size_t, 16> Order{3, 2, 1,  0,  5,  4,  7,  6,
                                                8, 9, 10, 11, 12, 13, 14, 15};
    std::string result;
    for (const std::size_t byte : Order) {
        unsigned number = 0;
        const char* first = digits.data() + 2 * byte;
        if (digits.size() != 32 || std::from_chars(first, first + 2, number, 16).ptr != first + 2)
            failType("A value is no GUID.");
        result += static_cast<char>(number);
    }
    return result;
}

void writeDate(const data::DateTime& value, ByteWriter& out) {
    out.i16(value.year);
    out.u16(value.month);
    out.u16(value.day);
}

void writeTime(const data::DateTime& value, ByteWriter& out) {
    out.u16(value.hour);
    out.u16(value.minute);
    out.u16(value.second);
}

void writeDecimal(const WideDecimal& number, ByteWriter& out) {
    out.u8(static_cast<std::uint8_t>(number.scale));
    out.u8(number.isNegative() ? 0x80 : 0x00);
    out.u32(number.limbs[2]);
    out.u32(number.limbs[0]);
    out.u32(number.limbs[1]);
}

std::string_view magnitudeBytes(const WideDecimal& number, std::array<char, 16>& room) {
    for (std::size_t i = 0; i < room.size(); ++i)
        room[i] = static_cast<char>(number.limbs[i / 4] >> (i % 4 * 8));
    return {room.data(), room.size()};
}

/// The exact number with a scale that DECIMAL can hold.
WideDecimal decimalOf(const Value& value, int scale) {
    constexpr int LargestScale = 28;
    WideDecimal number = exact(value);
    if (scale >= 0 || number.scale > LargestScale)
        number.rescale(scale >= 0 ? scale : LargestScale);
    while (number.limbs[3] != 0 && number.scale > 0 && scale < 0)
        number.rescale(number.scale - 1);
    return number;
}

std::int64_t currencyOf(const Value& value) {
    WideDecimal number = exact(value);
    number.rescale(4);
    const auto limit = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    const std::uint64_t magnitude = number.low64();
    if (!number.fits64() || magnitude > limit + (number.negative ? 1 : 0))
        throw data::Error(data::number::Overflow, "A number is too large for currency.");
    return static_cast<std::int64_t>(number.negative ? std::uint64_t{0} - magnitude : magnitude);
}

void variant(const Value& value, ByteWriter& out) {
    const auto head = [&out](DataType type) {
        out.u16(static_cast<std::uint16_t>(type));
        out.fill(6, '\0');
    };
    switch (value.kind()) {
    case Kind::Boolean:
        head(DataType::Boolean);
        return out.u64(value.asBoolean() ? 0xFFFF : 0);
    case Kind::Integer:
        head(DataType::BigInt);
        return out.i64(value.asInteger());
    case Kind::Unsigned:
        head(DataType::UnsignedBigInt);
        return out.u64(value.asUnsigned());
    case Kind::Single:
        head(DataType::Single);
        out.r4(static_cast<float>(value.asDouble()));
        return out.fill(4, '\0');
    case Kind::Double:
        head(DataType::Double);
        return out.r8(value.asDouble());
    case Kind::Decimal:
        out.u16(static_cast<std::uint16_t>(DataType::Decimal));
        return writeDecimal(decimalOf(value, -1), out);
    case Kind::Date:
    case Kind::Time:
    case Kind::DateTime:
        head(DataType::Date);
        return out.r8(oleDateOf(dateTime(value)));
    default:
        failType("A variant column holds numbers and dates only.");
    }
}

} // namespace

CellEncoder::CellEncoder(const ColumnDescriptor& column)
    : name_(column.name), type_(column.type), layout_(cellLayout(column)),
      precision_(static_cast<std::uint8_t>(column.precision)),
      scale_(column.scale < 0 || column.scale == 0xFF ? -1 : column.scale) {}

void CellEncoder::failOverflow() const {
    throw data::Error(data::number::Overflow, "A value is too large for the column " + name_ + ".");
}

void CellEncoder::integer(const Value& value, ByteWriter& out) const {
    const bool isUnsigned = type_ == DataType::UnsignedTinyInt ||
                            type_ == DataType::UnsignedSmallInt || type_ == DataType::UnsignedInt ||
                            type_ == DataType::UnsignedBigInt;
    bool negative = false;
    std::uint64_t magnitude = 0;
    if (value.kind() == Kind::Integer) {
        negative = value.asInteger() < 0;
        magnitude = static_cast<std::uint64_t>(value.asInteger());
        magnitude = negative ? std::uint64_t{0} - magnitude : magnitude;
    } else if (value.kind() == Kind::Unsigned) {
        magnitude = value.asUnsigned();
    } else {
        WideDecimal number = exact(value);
        number.rescale(0);
        if (!number.fits64())
            failOverflow();
        negative = number.isNegative();
        magnitude = number.low64();
    }
    const auto bits = static_cast<unsigned>(8 * layout_.size);
    const std::uint64_t mask = std::numeric_limits<std::uint64_t>::max() >> (64 - bits);
    const std::uint64_t limit = isUnsigned ? mask : (mask >> 1U) + (negative ? 1 : 0);
    if (magnitude > limit || (isUnsigned && negative))
        failOverflow();
    out.low(negative ? std::uint64_t{0} - magnitude : magnitude,
            static_cast<std::size_t>(layout_.size));
}

void CellEncoder::single(double value, ByteWriter& out) const {
    if (std::isfinite(value) && std::fabs(value) > std::numeric_limits<float>::max())
        failOverflow();
    out.r4(static_cast<float>(value));
}

void CellEncoder::decimal(const Value& value, ByteWriter& out) const {
    const WideDecimal number = decimalOf(value, scale_);
    if (number.limbs[3] != 0 || number.scale > 28)
        failOverflow();
    out.u16(0);
    writeDecimal(number, out);
}

void CellEncoder::numeric(const Value& value, ByteWriter& out) const {
    WideDecimal number = exact(value);
    // Every value tells its own scale: one that has no room for all the column's decimals does
    // not need them.
    if (scale_ >= 0)
        number.tryRescale(std::min(scale_, WideDecimal::MaxScale));
    std::array<char, 16> room{};
    std::string_view magnitude = magnitudeBytes(number, room);
    if (type_ == DataType::VarNumeric) {
        magnitude = magnitude.substr(0, magnitude.find_last_not_of('\0') + 1);
        out.u8(static_cast<std::uint8_t>(3 + magnitude.size()));
        if (layout_.prefix == CellLayout::Prefix::FourBytes)
            out.fill(3, '\0');
    }
    out.u8(precision_);
    out.u8(static_cast<std::uint8_t>(number.scale));
    out.u8(number.isNegative() ? 0 : 1);
    out.bytes(magnitude);
}

/// @throws data::Error when the column's prefix or length cannot say a size.
std::uint32_t CellEncoder::checkedSize(std::size_t size) const {
    const bool oneByte = layout_.prefix == CellLayout::Prefix::OneByte;
    const std::size_t largest = oneByte ? std::numeric_limits<std::uint8_t>::max()
                                        : std::numeric_limits<std::uint32_t>::max();
    if (size > largest || (layout_.fixed && size > layout_.size))
        failOverflow();
    return static_cast<std::uint32_t>(size);
}

void CellEncoder::prefixed(std::string_view bytes, char padding, ByteWriter& out) const {
    checkedSize(bytes.size());
    const auto size = layout_.fixed ? static_cast<std::size_t>(layout_.size) : bytes.size();
    if (layout_.prefix == CellLayout::Prefix::OneByte)
        out.u8(static_cast<std::uint8_t>(size));
    else if (layout_.prefix == CellLayout::Prefix::FourBytes)
        out.u32(static_cast<std::uint32_t>(size));
    out.bytes(bytes);
    out.fill(size - bytes.size(), padding);
}

/// Writes straight into the row: these are most of what there is.
void CellEncoder::wideText(std::string_view utf8, ByteWriter& out) const {
    const std::size_t prefix = out.size();
    if (layout_.prefix == CellLayout::Prefix::OneByte)
        out.u8(0);
    else if (layout_.prefix == CellLayout::Prefix::FourBytes)
        out.u32(0);
    std::size_t size = out.utf16(utf8);
    for (; layout_.fixed && size < layout_.size; size += 2)
        out.u16(' ');
    const std::uint32_t checked = checkedSize(size);
    if (layout_.prefix == CellLayout::Prefix::OneByte)
        out.patchU8(prefix, static_cast<std::uint8_t>(checked));
    else if (layout_.prefix == CellLayout::Prefix::FourBytes)
        out.patchU32(prefix, checked);
}

void CellEncoder::text(std::string_view utf8, const CodePage& codePage, ByteWriter& out) const {
    if (type_ != DataType::Char)
        return wideText(utf8, out);
    if (isAscii(utf8))
        return prefixed(utf8, ' ', out);
    std::string bytes;
    codePage.appendFromUtf8(utf8, bytes);
    prefixed(bytes, ' ', out);
}

void CellEncoder::encode(const Value& value, const CodePage& codePage, ByteWriter& out) const {
    switch (type_) {
    case DataType::SmallInt:
    case DataType::Integer:
    case DataType::TinyInt:
    case DataType::UnsignedTinyInt:
    case DataType::UnsignedSmallInt:
    case DataType::UnsignedInt:
    case DataType::BigInt:
    case DataType::UnsignedBigInt:
        return integer(value, out);
    case DataType::Single:
        return single(real(value), out);
    case DataType::Double:
        return out.r8(real(value));
    case DataType::Currency:
        return out.i64(currencyOf(value));
    case DataType::Date:
        return out.r8(oleDateOf(dateTime(value)));
    case DataType::Boolean:
        return out.u16(boolean(value) ? 0xFFFF : 0);
    case DataType::Variant:
        return variant(value, out);
    case DataType::Decimal:
        return decimal(value, out);
    case DataType::FileTime:
        return out.u64(fileTimeOf(dateTime(value)));
    case DataType::Guid:
        return out.bytes(guid(value));
    case DataType::Numeric:
    case DataType::VarNumeric:
        return numeric(value, out);
    case DataType::DBDate:
        return writeDate(dateTime(value), out);
    case DataType::DBTime:
        return writeTime(dateTime(value), out);
    case DataType::DBTimeStamp: {
        const data::DateTime stamp = dateTime(value);
        writeDate(stamp, out);
        writeTime(stamp, out);
        return out.u32(stamp.nanosecond);
    }
    case DataType::Binary:
        if (value.kind() != Kind::Binary && value.kind() != Kind::Text &&
            value.kind() != Kind::Guid)
            failType("The column " + name_ + " holds bytes only.");
        return prefixed(value.bytes(), '\0', out);
    case DataType::Char:
    case DataType::WChar:
    case DataType::BStr:
        if (value.kind() == Kind::Text || value.kind() == Kind::Binary)
            return text(value.bytes(), codePage, out);
        return text(value.toText(), codePage, out);
    case DataType::Empty:
    case DataType::Error:
    case DataType::Chapter:
        break;
    }
    failType("The column " + name_ + " has no values."); // cellLayout() has refused these types
}

} // namespace quillet::rds
