#pragma once

#include <cstdint>
#include <string_view>

namespace quillet::rds::token {

// First bytes of the parts of a tablegram (MS-ADTG 2.2.3.14.6).
inline constexpr std::uint8_t Header = 0x01;
inline constexpr std::uint8_t HandlerOptions = 0x02;
inline constexpr std::uint8_t ResultDescriptor = 0x03;
inline constexpr std::uint8_t RecordsetContext = 0x10;
inline constexpr std::uint8_t TableDescriptor = 0x05;
inline constexpr std::uint8_t ColumnDescriptor = 0x06;
inline constexpr std::uint8_t Row = 0x07;
inline constexpr std::uint8_t ChangedRow = 0x0A;
inline constexpr std::uint8_t DeletedRow = 0x0C;
inline constexpr std::uint8_t InsertedRow = 0x0D;
inline constexpr std::uint8_t Done = 0x0F;

// Rows of recordsets within rows.
inline constexpr std::uint8_t ChildRow = 0x87;
inline constexpr std::uint8_t ChangedChildRow = 0x8A;
inline constexpr std::uint8_t DeletedChildRow = 0x8C;
inline constexpr std::uint8_t InsertedChildRow = 0x8D;

} // namespace quillet::rds::token

namespace quillet::rds::presence {

// Which parts a column descriptor has, as a big-endian number (MS-ADTG 2.2.3.14.3.6).
inline constexpr std::uint32_t Name = 0x800000;
inline constexpr std::uint32_t BaseTable = 0x400000;
inline constexpr std::uint32_t BaseColumn = 0x200000;
inline constexpr std::uint32_t BaseColumnName = 0x100000;
inline constexpr std::uint32_t Catalog = 0x020000;
inline constexpr std::uint32_t Schema = 0x010000;
inline constexpr std::uint32_t CollatingSequence = 0x008000;
inline constexpr std::uint32_t ComputeMode = 0x004000;
inline constexpr std::uint32_t DateTimePrecision = 0x002000;
inline constexpr std::uint32_t DefaultValue = 0x001000;
inline constexpr std::uint32_t AutoIncrement = 0x000100;
inline constexpr std::uint32_t CaseSensitive = 0x000080;
inline constexpr std::uint32_t MultiValued = 0x000040;
inline constexpr std::uint32_t Searchable = 0x000020;
inline constexpr std::uint32_t Unique = 0x000010;
inline constexpr std::uint32_t OctetLength = 0x000008;
inline constexpr std::uint32_t Calculation = 0x000004;

} // namespace quillet::rds::presence

namespace quillet::rds {

/// Whether bit `index` of a row's map is set; the first bit is the most significant one.
inline bool mapBit(std::string_view map, std::size_t index) noexcept {
    return (static_cast<unsigned char>(map[index / 8]) >> (7 - index % 8) & 1U) != 0;
}

} // namespace quillet::rds
