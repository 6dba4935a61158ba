#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace quillet::data {

/// Type codes of columns: ADO's `DataTypeEnum`, which are OLE DB's DBTYPE codes and those of the
/// tablegram (MS-ADTG 2.2.3.14.3.6).
enum class DataType : std::uint16_t {
    Empty = 0x00,
    SmallInt = 0x02,
    Integer = 0x03,
    Single = 0x04,
    Double = 0x05,
    Currency = 0x06,
    Date = 0x07,
    BStr = 0x08,
    Error = 0x0A,
    Boolean = 0x0B,
    Variant = 0x0C,
    Decimal = 0x0E,
    TinyInt = 0x10,
    UnsignedTinyInt = 0x11,
    UnsignedSmallInt = 0x12,
    UnsignedInt = 0x13,
    BigInt = 0x14,
    UnsignedBigInt = 0x15,
    FileTime = 0x40,
    Guid = 0x48,
    Binary = 0x80,
    Char = 0x81,  ///< text in an ANSI code page
    WChar = 0x82, ///< text in UTF-16
    Numeric = 0x83,
    DBDate = 0x85,
    DBTime = 0x86,
    DBTimeStamp = 0x87,
    Chapter = 0x88,
    VarNumeric = 0x8B
};

/// How a column compares texts. `Find` and the database's own WHERE use the same rule.
enum class TextComparison : std::uint8_t {
    Access, ///< neither letter case nor trailing blanks count
    NoCase, ///< ASCII letter case does not count (SQLite's NOCASE)
    RTrim,  ///< trailing blanks do not count (SQLite's RTRIM)
    Binary
};

/// A column of a recordset.
struct Field {
    std::string Name;
    DataType Type = DataType::WChar;
    std::uint32_t DefinedSize = 0; ///< bytes, or characters for WChar; 0xFFFFFFFF = no limit
    std::uint8_t Precision = 0xFF; ///< 0xFF where it has no meaning
    std::uint8_t NumericScale = 0xFF;
    bool nullable = true;
    bool fixedLength = false;
    bool longValue = false; ///< a memo or a blob
    TextComparison comparison = TextComparison::Access;

    friend bool operator==(const Field&, const Field&) = default;
};

using FieldList = std::vector<Field>;

} // namespace quillet::data
