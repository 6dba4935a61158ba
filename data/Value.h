#pragma once

#include "data/Arena.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace quillet::data {

/// A date, a time of day, or both, without a time zone.
struct DateTime {
    std::int16_t year = 0;
    std::uint8_t month = 0; ///< 1 to 12
    std::uint8_t day = 0;   ///< 1 to 31
    std::uint8_t hour = 0;
    std::uint8_t minute = 0;
    std::uint8_t second = 0;
    std::uint32_t nanosecond = 0;

    friend bool operator==(const DateTime&, const DateTime&) = default;
};

/// One cell. Small and trivially copyable: numbers and dates are held inside, texts, bytes and
/// decimals are borrowed and must outlive the value (a recordset keeps them in its arena).
class Value {
public:
    enum class Kind : std::uint8_t {
        Null,
        Boolean,
        Integer,  ///< signed, up to 64 bits
        Unsigned, ///< unsigned, up to 64 bits
        Single,   ///< a double that has been a float
        Double,
        Decimal, ///< exact decimal, held as its plain text: optional "-", digits, optional "."
                 ///< digits
        Date,
        Time,
        DateTime,
        Guid,  ///< 16 bytes as on the wire: the first three groups little-endian
        Text,  ///< UTF-8
        Binary ///< raw bytes
    };

    Value() noexcept = default; ///< Null

    static Value boolean(bool value) noexcept;
    static Value integer(std::int64_t value) noexcept;
    static Value unsignedInteger(std::uint64_t value) noexcept;
    static Value single(float value) noexcept;
    static Value real(double value) noexcept;
    static Value decimal(std::string_view text) noexcept;
    static Value date(const data::DateTime& value) noexcept;
    static Value time(const data::DateTime& value) noexcept;
    static Value dateTime(const data::DateTime& value) noexcept;
    static Value guid(std::string_view sixteenBytes) noexcept;
    static Value text(std::string_view utf8) noexcept;
    static Value binary(std::string_view bytes) noexcept;

    Kind kind() const noexcept { return kind_; }
    bool isNull() const noexcept { return kind_ == Kind::Null; }

    // Each of these may be called for its own kinds only.
    bool asBoolean() const noexcept { return data_.integer != 0; }
    std::int64_t asInteger() const noexcept { return data_.integer; }
    std::uint64_t asUnsigned() const noexcept { return data_.unsignedInteger; }
    double asDouble() const noexcept { return data_.real; } ///< Single and Double
    data::DateTime asDateTime() const noexcept;             ///< Date, Time and DateTime
    std::string_view bytes() const noexcept {               ///< Decimal, Guid, Text and Binary
        return {data_.bytes, size_};
    }

    /// True for the kinds whose bytes are borrowed.
    bool borrows() const noexcept { return kind_ >= Kind::Guid || kind_ == Kind::Decimal; }

    /// The same value, what it borrows copied into an arena.
    Value keptIn(Arena& arena) const;

    /// The value as the platform converts it to text: shortest decimal with "." and no grouping,
    /// "YYYY-MM-DD HH:MM:SS", "YYYY-MM-DD", "HH:MM:SS", "True"/"False", "{GUID}". Null is "".
    /// Bytes are taken as text.
    std::string toText() const;

    /// Appends what toText() returns, without a temporary for texts.
    void appendTextTo(std::string& out) const;

private:
    union Data {
        std::int64_t integer;
        std::uint64_t unsignedInteger;
        double real;
        const char* bytes;
    };

    static Value packed(Kind kind, const data::DateTime& value) noexcept;
    static Value borrowed(Kind kind, std::string_view bytes) noexcept;

    Data data_{0};
    std::uint32_t size_ = 0; ///< bytes borrowed, or nanoseconds of a date-time
    Kind kind_ = Kind::Null;
};

static_assert(sizeof(Value) == 16);

} // namespace quillet::data
