#include "rds/Variant.h"

#include "data/Error.h"
#include "rds/tablegram/OleDate.h"
#include "rds/tablegram/WideDecimal.h"

#include <array>

namespace quillet::rds {

namespace {

std::string textOf(const WideDecimal& number) {
    std::array<char, WideDecimal::MaxText> text{};
    return {text.data(), number.format(text.data())};
}

std::string textOf(Currency value) {
    WideDecimal number;
    number.scale = 4;
    number.negative = value.scaled < 0;
    const auto bits = static_cast<std::uint64_t>(value.scaled);
    const std::uint64_t magnitude = number.negative ? std::uint64_t{0} - bits : bits;
    number.limbs = {static_cast<std::uint32_t>(magnitude),
                    static_cast<std::uint32_t>(magnitude >> 32U), 0, 0};
    return textOf(number);
}

std::string textOf(const Decimal& value) {
    WideDecimal number;
    number.scale = value.scale;
    number.negative = value.negative;
    number.limbs = {value.low, value.mid, value.high, 0};
    return textOf(number);
}

} // namespace

bool operator==(const VariantArray& a, const VariantArray& b) {
    return a.elementType == b.elementType && a.isNull == b.isNull && a.dimensions == b.dimensions &&
           a.elements == b.elements;
}

Variant Variant::strings(const std::vector<std::string>& utf8) {
    VariantArray array;
    array.elementType = VarType::BStr;
    array.dimensions = {{static_cast<std::uint32_t>(utf8.size()), 0}};
    array.elements.reserve(utf8.size());
    for (const std::string& text : utf8)
        array.elements.push_back(string(text));
    return Variant(std::move(array));
}

VarType Variant::type() const noexcept {
    // In the order of the alternatives; an array has the type of its elements.
    static constexpr std::array<VarType, 14> Types{
        VarType::Empty, VarType::Null,     VarType::I2,      VarType::I4,   VarType::R4,
        VarType::R8,    VarType::Currency, VarType::Date,    VarType::BStr, VarType::Dispatch,
        VarType::Error, VarType::Bool,     VarType::Decimal, VarType::UI1};
    if (const auto* array = std::get_if<VariantArray>(this))
        return array->elementType;
    return Types[index()];
}

std::uint16_t Variant::typeCode() const noexcept {
    const auto code = static_cast<std::uint16_t>(type());
    return isArray() ? static_cast<std::uint16_t>(code | ArrayFlag) : code;
}

bool Variant::isGroupable() const noexcept {
    return !isArray() && !std::holds_alternative<Dispatch>(*this);
}

std::string Variant::toText() const {
    using data::Value;
    switch (isArray() ? VarType::Variant : type()) {
    case VarType::Empty:
        return {};
    case VarType::Null:
        throw data::invalidUseOfNull();
    case VarType::I2:
        return Value::integer(std::get<std::int16_t>(*this)).toText();
    case VarType::I4:
        return Value::integer(std::get<std::int32_t>(*this)).toText();
    case VarType::R4:
        return Value::single(std::get<float>(*this)).toText();
    case VarType::R8:
        return Value::real(std::get<double>(*this)).toText();
    case VarType::Currency:
        return textOf(std::get<Currency>(*this));
    case VarType::Date:
        return Value::dateTime(dateTimeOfOleDate(std::get<Date>(*this).days)).toText();
    case VarType::BStr:
        return std::get<BStr>(*this).text.value_or("");
    case VarType::Bool:
        return Value::boolean(std::get<bool>(*this)).toText();
    case VarType::Decimal:
        return textOf(std::get<Decimal>(*this));
    case VarType::UI1:
        return Value::integer(std::get<std::uint8_t>(*this)).toText();
    default:
        throw data::typeMismatch();
    }
}

} // namespace quillet::rds
