#pragma once

#include "data/Field.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quillet::rds {

/// Column flags of the tablegram (MS-ADTG 2.2.3.14.3.7).
namespace columnflag {
inline constexpr std::uint32_t WriteUnknown = 0x0008; ///< the column has a base table
inline constexpr std::uint32_t FixedLength = 0x0010;
inline constexpr std::uint32_t Nullable = 0x0020;
inline constexpr std::uint32_t MayBeNull = 0x0040;
inline constexpr std::uint32_t Long = 0x0080;
inline constexpr std::uint32_t Chapter = 0x2000;
inline constexpr std::uint32_t Key = 0x8000;
} // namespace columnflag

inline constexpr std::uint32_t NoLimit = 0xFFFFFFFF;

/// A base table of a recordset (MS-ADTG 2.2.3.14.3.3).
struct TableDescriptor {
    std::uint16_t ordinal = 1; ///< from 1
    std::string name;          ///< as the database quotes it
    std::string updateName;
    std::uint16_t columns = 0;             ///< of this table in the recordset
    std::vector<std::uint16_t> keyColumns; ///< base column ordinals, ascending
};

/// Where the values of a column come from.
struct BaseColumn {
    std::uint16_t table = 1;  ///< ordinal of its TableDescriptor
    std::uint16_t column = 1; ///< ordinal in that table, from 1
    std::string name;
};

/// A column as the tablegram describes it (MS-ADTG 2.2.3.14.3.6).
struct ColumnDescriptor {
    std::string name;
    std::optional<BaseColumn> base; ///< none for an expression
    std::optional<std::string> catalog, schema;
    data::DataType type = data::DataType::WChar;
    std::uint32_t maxLength = 0;    ///< bytes, or characters for WChar and BStr
    std::uint32_t precision = 0xFF; ///< 0xFF where it has no meaning
    std::int32_t scale = 0xFF;
    std::uint32_t flags = 0; ///< of columnflag
    bool visible = true;

    bool isNullable() const noexcept {
        return (flags & (columnflag::Nullable | columnflag::MayBeNull)) != 0;
    }
    bool isFixedLength() const noexcept { return (flags & columnflag::FixedLength) != 0; }
};

/// What stands in front of the rows.
struct TablegramMetadata {
    std::vector<TableDescriptor> tables;
    std::vector<ColumnDescriptor> columns;
    std::uint32_t rowCount = 0; ///< 0 where it is not known yet
};

/// Describes plain query results, columns without a base table, as a database server does: sizes
/// of fixed types and missing precisions are filled in; a text or binary column without a size is
/// one without a limit.
/// @throws data::Error `number::Unspecified` for a column whose type has no form on the wire.
TablegramMetadata describe(const data::FieldList& fields);

/// The same for a database's own fields. Its texts are declared with twice their size: it counts
/// characters, of which each may be two bytes in the code page or two units in UTF-16.
TablegramMetadata describeResult(data::FieldList fields);

/// How the values of a column are laid out in a row.
struct CellLayout {
    enum class Prefix : std::uint8_t { None, OneByte, FourBytes };
    Prefix prefix = Prefix::None;
    std::uint64_t size = 0; ///< bytes: of every value if fixed, otherwise the declared maximum
    bool fixed = false;     ///< fixed values over 255 bytes have a prefix, and all of their bytes

    friend bool operator==(const CellLayout&, const CellLayout&) = default;
};

/// The layout rule of MS-ADTG 2.2.3.14.3.6, with the sizes in bytes for every type and a
/// four-byte prefix for fixed columns over 255 bytes too, as servers write it.
/// @throws data::Error `number::Unspecified` for types that no row can hold.
CellLayout cellLayout(const ColumnDescriptor& column);

/// Type, size and so on of a described column for a recordset.
data::Field fieldOf(const ColumnDescriptor& column);

} // namespace quillet::rds
