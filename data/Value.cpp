#include "data/Value.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>

namespace quillet::data {

namespace {

constexpr std::size_t GuidSize = 16;

template <typename Number>
void appendNumber(std::string& out, Number value) {
    std::array<char, 24> buffer{};
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr;
    out.append(buffer.data(), end);
}

template <typename Real>
void appendReal(std::string& out, Real value) {
    if (!std::isfinite(value)) {
        out += std::isnan(value) ? "NaN" : (value < 0 ? "-Infinity" : "Infinity");
        return;
    }
    // Most are whole numbers, and as such much quicker; "-0" is one of them.
    constexpr Real Exact = 1'000'000;
    if (std::fabs(value) <= Exact && value == std::trunc(value)) {
        appendNumber(out, static_cast<std::int64_t>(value));
        return;
    }
    // Fixed notation of the smallest double takes 1,075 digits.
    std::array<char, 1100> buffer; // NOLINT(cppcoreguidelines-pro-type-member-init)
    const auto end =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::fixed)
            .ptr;
    out.append(buffer.data(), end);
}

void appendPadded(std::string& out, unsigned value, std::size_t width) {
    const std::size_t before = out.size();
    appendNumber(out, value);
    if (const std::size_t digits = out.size() - before; digits < width)
        out.insert(before, width - digits, '0');
}

void appendDate(std::string& out, const DateTime& value) {
    if (value.year < 0)
        out += '-';
    appendPadded(out, static_cast<unsigned>(std::abs(value.year)), 4);
    out += '-';
    appendPadded(out, value.month, 2);
    out += '-';
    appendPadded(out, value.day, 2);
}

void appendTime(std::string& out, const DateTime& value) {
    appendPadded(out, value.hour, 2);
    out += ':';
    appendPadded(out, value.minute, 2);
    out += ':';
    appendPadded(out, value.second, 2);
}

void appendDecimal(std::string& out, std::string_view text) {
    if (text.find('.') != std::string_view::npos) {
        text = text.substr(0, text.find_last_not_of('0') + 1);
        if (text.ends_with('.'))
            text.remove_suffix(1);
    }
    out += text == "-0" ? std::string_view("0") : text;
}

void appendGuid(std::string& out, std::string_view bytes) {
    static constexpr std::array<int, GuidSize> Order{3, 2, 1,  0,  5,  4,  7,  6,
                                                     8, 9, 10, 11, 12, 13, 14, 15};
    static constexpr std::string_view Digits = "0123456789ABCDEF";
    out += '{';
    for (std::size_t i = 0; i < GuidSize; ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10)
            out += '-';
        const auto byte = static_cast<unsigned char>(bytes[static_cast<std::size_t>(Order[i])]);
        out += Digits[byte >> 4U];
        out += Digits[byte & 0x0FU];
    }
    out += '}';
}

} // namespace

Value Value::borrowed(Kind kind, std::string_view bytes) noexcept {
    Value result;
    result.kind_ = kind;
    result.data_.bytes = bytes.data();
    result.size_ = static_cast<std::uint32_t>(bytes.size());
    return result;
}

Value Value::packed(Kind kind, const data::DateTime& value) noexcept {
    Value result;
    result.kind_ = kind;
    result.data_.unsignedInteger =
        static_cast<std::uint64_t>(static_cast<std::uint16_t>(value.year)) << 40U |
        static_cast<std::uint64_t>(value.month) << 32U |
        static_cast<std::uint64_t>(value.day) << 24U |
        static_cast<std::uint64_t>(value.hour) << 16U |
        static_cast<std::uint64_t>(value.minute) << 8U | value.second;
    result.size_ = value.nanosecond;
    return result;
}

Value Value::boolean(bool value) noexcept {
    Value result;
    result.kind_ = Kind::Boolean;
    result.data_.integer = value ? 1 : 0;
    return result;
}

Value Value::integer(std::int64_t value) noexcept {
    Value result;
    result.kind_ = Kind::Integer;
    result.data_.integer = value;
    return result;
}

Value Value::unsignedInteger(std::uint64_t value) noexcept {
    Value result;
    result.kind_ = Kind::Unsigned;
    result.data_.unsignedInteger = value;
    return result;
}

Value Value::single(float value) noexcept {
    Value result = real(static_cast<double>(value));
    result.kind_ = Kind::Single;
    return result;
}

Value Value::real(double value) noexcept {
    Value result;
    result.kind_ = Kind::Double;
    result.data_.real = value;
    return result;
}

Value Value::decimal(std::string_view text) noexcept {
    return borrowed(Kind::Decimal, text);
}
Value Value::date(const data::DateTime& value) noexcept {
    return packed(Kind::Date, value);
}
Value Value::time(const data::DateTime& value) noexcept {
    return packed(Kind::Time, value);
}
Value Value::dateTime(const data::DateTime& value) noexcept {
    return packed(Kind::DateTime, value);
}
Value Value::guid(std::string_view bytes) noexcept {
    return borrowed(Kind::Guid, bytes);
}
Value Value::text(std::string_view utf8) noexcept {
    return borrowed(Kind::Text, utf8);
}
Value Value::binary(std::string_view bytes) noexcept {
    return borrowed(Kind::Binary, bytes);
}

data::DateTime Value::asDateTime() const noexcept {
    const std::uint64_t packed = data_.unsignedInteger;
    data::DateTime result;
    result.year = static_cast<std::int16_t>(static_cast<std::uint16_t>(packed >> 40U));
    result.month = static_cast<std::uint8_t>(packed >> 32U);
    result.day = static_cast<std::uint8_t>(packed >> 24U);
    result.hour = static_cast<std::uint8_t>(packed >> 16U);
    result.minute = static_cast<std::uint8_t>(packed >> 8U);
    result.second = static_cast<std::uint8_t>(packed);
    result.nanosecond = size_;
    return result;
}

Value Value::keptIn(Arena& arena) const {
    return borrows() ? borrowed(kind_, arena.copy(bytes())) : *this;
}

std::string Value::toText() const {
    std::string result;
    appendTextTo(result);
    return result;
}

void Value::appendTextTo(std::string& out) const {
    switch (kind_) {
    case Kind::Null:
        return;
    case Kind::Boolean:
        out += asBoolean() ? "True" : "False";
        return;
    case Kind::Integer:
        appendNumber(out, data_.integer);
        return;
    case Kind::Unsigned:
        appendNumber(out, data_.unsignedInteger);
        return;
    case Kind::Single:
        appendReal(out, static_cast<float>(data_.real));
        return;
    case Kind::Double:
        appendReal(out, data_.real);
        return;
    case Kind::Decimal:
        appendDecimal(out, bytes());
        return;
    case Kind::Date:
        appendDate(out, asDateTime());
        return;
    case Kind::Time:
        appendTime(out, asDateTime());
        return;
    case Kind::DateTime: {
        const data::DateTime value = asDateTime();
        appendDate(out, value);
        out += ' ';
        appendTime(out, value);
        return;
    }
    case Kind::Guid:
        appendGuid(out, bytes());
        return;
    case Kind::Text:
    case Kind::Binary:
        out += bytes();
        return;
    }
}

} // namespace quillet::data
