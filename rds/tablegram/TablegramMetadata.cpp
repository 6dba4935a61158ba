#include "rds/tablegram/TablegramMetadata.h"

#include "data/Error.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace quillet::rds {

namespace {

using data::DataType;

/// What a database server says of a type that is the same for every column.
struct FixedType {
    DataType type;
    std::uint8_t size; ///< bytes in a row
    std::uint8_t precision, scale;
};

constexpr std::uint8_t None = 0xFF;
constexpr std::array<FixedType, 21> FixedTypes{{
    {DataType::SmallInt, 2, 5, None},        {DataType::Integer, 4, 10, None},
    {DataType::Single, 4, 7, None},          {DataType::Double, 8, 15, None},
    {DataType::Currency, 8, 19, None},       {DataType::Date, 8, None, None},
    {DataType::Boolean, 2, None, None},      {DataType::Variant, 16, None, None},
    {DataType::Decimal, 16, 28, None},       {DataType::TinyInt, 1, 3, None},
    {DataType::UnsignedTinyInt, 1, 3, None}, {DataType::UnsignedSmallInt, 2, 5, None},
    {DataType::UnsignedInt, 4, 10, None},    {DataType::BigInt, 8, 19, None},
    {DataType::UnsignedBigInt, 8, 20, None}, {DataType::FileTime, 8, None, None},
    {DataType::Guid, 16, None, None},        {DataType::Numeric, 19, 38, None},
    {DataType::DBDate, 6, 10, None},         {DataType::DBTime, 6, 8, None},
    {DataType::DBTimeStamp, 16, 23, 3},
}};

const FixedType* fixedType(DataType type) noexcept {
    for (const FixedType& entry : FixedTypes) {
        if (entry.type == type)
            return &entry;
    }
    return nullptr;
}

bool holdsCharacters(DataType type) noexcept {
    return type == DataType::WChar || type == DataType::BStr;
}

[[noreturn]] void failType(const ColumnDescriptor& column) {
    std::array<char, 8> code{};
    std::snprintf(code.data(), code.size(), "0x%04X", static_cast<unsigned>(column.type));
    throw data::Error(data::number::Unspecified, "The column " + column.name + " has the type " +
                                                     code.data() +
                                                     ", which a remote recordset cannot hold.");
}

std::uint8_t clampToByte(std::int64_t value) noexcept {
    return value < 0 || value > 0xFF ? std::uint8_t{0xFF} : static_cast<std::uint8_t>(value);
}

ColumnDescriptor describe(const data::Field& field) {
    ColumnDescriptor column;
    column.name = field.Name;
    // Recordsets of the time have no BStr columns; their texts are wide ones without a limit.
    column.type = field.Type == DataType::BStr ? DataType::WChar : field.Type;
    column.precision = field.Precision;
    column.scale = field.NumericScale;
    if (field.nullable)
        column.flags |= columnflag::Nullable | columnflag::MayBeNull;
    if (const FixedType* fixed = fixedType(field.Type)) {
        column.maxLength = fixed->size;
        column.flags |= columnflag::FixedLength;
        if (column.precision == None)
            column.precision = fixed->precision;
        if (column.scale == None)
            column.scale = fixed->scale;
        if (field.Type == DataType::Numeric) // servers compute with more digits than it can say
            column.precision = std::min<std::uint32_t>(column.precision, fixed->precision);
        return column;
    }
    const bool unlimited = field.DefinedSize == 0 || field.DefinedSize == NoLimit;
    column.maxLength = unlimited ? NoLimit : field.DefinedSize;
    if (field.longValue || unlimited)
        column.flags |= columnflag::Long;
    else if (field.fixedLength && field.Type != DataType::VarNumeric)
        column.flags |= columnflag::FixedLength;
    return column;
}

} // namespace

TablegramMetadata describe(const data::FieldList& fields) {
    TablegramMetadata metadata;
    metadata.columns.reserve(fields.size());
    for (const data::Field& field : fields) {
        metadata.columns.push_back(describe(field));
        cellLayout(metadata.columns.back()); // refuses types without a form
    }
    return metadata;
}

TablegramMetadata describeResult(data::FieldList fields) {
    for (data::Field& field : fields) {
        const bool isText = holdsCharacters(field.Type) || field.Type == DataType::Char;
        if (isText && !field.fixedLength)
            field.DefinedSize = field.DefinedSize > NoLimit / 2 ? NoLimit : 2 * field.DefinedSize;
    }
    return describe(fields);
}

CellLayout cellLayout(const ColumnDescriptor& column) {
    using Prefix = CellLayout::Prefix;
    constexpr std::uint64_t LargestShort = 255;

    if (const FixedType* fixed = fixedType(column.type))
        return {Prefix::None, fixed->size, true};
    switch (column.type) {
    case DataType::BStr:
    case DataType::Binary:
    case DataType::Char:
    case DataType::WChar:
    case DataType::VarNumeric:
        break;
    default:
        failType(column);
    }
    if (column.isFixedLength() && (column.flags & columnflag::Long) != 0)
        failType(column); // no document and no server says what these look like
    std::uint64_t size = column.maxLength;
    if (size != NoLimit && holdsCharacters(column.type))
        size *= 2;
    if (size > LargestShort)
        return {Prefix::FourBytes, size, column.isFixedLength() && size != NoLimit};
    return column.isFixedLength() ? CellLayout{Prefix::None, size, true}
                                  : CellLayout{Prefix::OneByte, size, false};
}

data::Field fieldOf(const ColumnDescriptor& column) {
    data::Field field;
    field.Name = column.name;
    field.Type = column.type;
    field.DefinedSize = column.maxLength;
    field.Precision = clampToByte(column.precision);
    field.NumericScale = clampToByte(column.scale);
    field.nullable = column.isNullable();
    field.fixedLength = column.isFixedLength();
    field.longValue = (column.flags & columnflag::Long) != 0;
    return field;
}

} // namespace quillet::rds
