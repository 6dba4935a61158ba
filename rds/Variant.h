#pragma once

#include "data/Recordset.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace quillet::rds {

/// Type codes of argument values (MS-ADTG 2.2.1.2).
enum class VarType : std::uint16_t {
    Empty = 0x0000,
    Null = 0x0001,
    I2 = 0x0002,
    I4 = 0x0003,
    R4 = 0x0004,
    R8 = 0x0005,
    Currency = 0x0006,
    Date = 0x0007,
    BStr = 0x0008,
    Dispatch = 0x0009,
    Error = 0x000A,
    Bool = 0x000B,
    Variant = 0x000C, ///< as the element type of an array only
    Unknown = 0x000D, ///< as the element type of an array only
    Decimal = 0x000E,
    UI1 = 0x0011
};

/// Added to the code of the element type of an array.
inline constexpr std::uint16_t ArrayFlag = 0x2000;

class Variant;

struct Empty {
    friend bool operator==(Empty, Empty) = default;
};
struct Null {
    friend bool operator==(Null, Null) = default;
};

/// A string that may be the null string, which is not the empty one. UTF-8.
struct BStr {
    std::optional<std::string> text;
    friend bool operator==(const BStr&, const BStr&) = default;
};

/// Ten-thousandths.
struct Currency {
    std::int64_t scaled = 0;
    friend bool operator==(Currency, Currency) = default;
};

/// Days since 1899-12-30.
struct Date {
    double days = 0;
    friend bool operator==(Date, Date) = default;
};

/// A 96-bit magnitude over a power of ten.
struct Decimal {
    std::uint8_t scale = 0;
    bool negative = false;
    std::uint32_t high = 0, low = 0, mid = 0;
    friend bool operator==(const Decimal&, const Decimal&) = default;
};

/// An HRESULT and, for failures, what EXCEPINFO says of it (MS-ADTG 2.2.1.4).
struct ScodeError {
    std::uint32_t scode = 0;
    std::uint32_t innerScode = 0;
    BStr source, description, helpFile;
    friend bool operator==(const ScodeError&, const ScodeError&) = default;
};

/// An object reference. The only object that travels is a recordset; none is "Nothing".
struct Dispatch {
    std::shared_ptr<data::Recordset> recordset;
    friend bool operator==(const Dispatch&, const Dispatch&) = default;
};

/// An array of any number of dimensions, its elements in the order of the wire.
struct VariantArray {
    struct Dimension {
        std::uint32_t count = 0;
        std::int32_t lowerBound = 0;
        friend bool operator==(Dimension, Dimension) = default;
    };
    VarType elementType = VarType::Variant;
    bool isNull = false;
    std::vector<Dimension> dimensions;
    std::vector<Variant> elements;
    friend bool operator==(const VariantArray&, const VariantArray&);
};

/// One argument or result of a remote call.
class Variant
    : public std::variant<Empty, Null, std::int16_t, std::int32_t, float, double, Currency, Date,
                          BStr, Dispatch, ScodeError, bool, Decimal, std::uint8_t, VariantArray> {
public:
    using variant::variant;

    static Variant string(std::string utf8) { return Variant(BStr{std::move(utf8)}); }

    /// A one-dimensional array of strings with lower bound 0.
    static Variant strings(const std::vector<std::string>& utf8);

    bool isEmpty() const noexcept { return std::holds_alternative<Empty>(*this); }

    bool isArray() const noexcept { return std::holds_alternative<VariantArray>(*this); }

    /// The type of the value, or of an array's elements.
    VarType type() const noexcept;

    /// The wire code of the value, with ArrayFlag for arrays.
    std::uint16_t typeCode() const noexcept;

    /// Whether the value may share a body part with its neighbours (MS-ADTG 2.2.2.6).
    bool isGroupable() const noexcept;

    /// The value as text where OLE Automation would convert it; an Empty or null string is "".
    /// @throws data::Error 13 (type mismatch) for objects, errors and arrays, 94 for Null.
    std::string toText() const;
};

} // namespace quillet::rds
