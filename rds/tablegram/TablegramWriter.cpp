#include "rds/tablegram/TablegramWriter.h"

#include "data/Error.h"
#include "rds/tablegram/TablegramFormat.h"

#include <limits>

namespace quillet::rds {

namespace {

using namespace std::string_view_literals;

constexpr std::size_t PieceSize = std::size_t{64} * 1024;

// Identifiers, property sets and their default values as the cursor service of database servers
// sends them (MS-ADTG 2.2.3.14.3.7 and example 4.5).
constexpr auto HandlerOptionsContent = "\xB6\x92\xF2\x3F\x04\xB2\xCF\x11\x8D\x23\x00\xAA\x00\x5F"
                                       "\xFE\x58\x01"
                                       "\0\0\0\0\0\0" // three empty names
                                       "\x03\x00"sv;  // fetched in the background
constexpr auto ResultIdentifier = "\xD2\xAD\x63\xF6\x02\xEB\xCF\x11\xB0\xE3\x00\xAA\x00\x3F\x00\x0F"
                                  "\0\0\0"sv;
constexpr auto AdcPropertySet =
    "\xC1\x3C\x8E\xB6\xEB\x6D\xD0\x11\x8D\xF6\x00\xAA\x00\x5F\xFE\x58"sv;
constexpr auto RowsetPropertySet =
    "\xBE\x22\xB5\xC8\xF3\x5C\xCE\x11\xAD\xE5\x00\xAA\x00\x44\x77\x3D"sv;

void number(ByteWriter& out, std::uint32_t id, std::uint32_t value) {
    out.u32(id);
    out.u16(4);
    out.u32(value);
}

void yes(ByteWriter& out, std::uint32_t id) {
    out.u32(id);
    out.u16(2);
    out.u16(0xFFFF);
}

void emptyText(ByteWriter& out, std::uint32_t id) {
    out.u32(id);
    out.u16(0);
}

void propertySet(ByteWriter& out, std::string_view identifier, std::uint16_t properties) {
    out.bytes(identifier);
    out.u16(properties);
}

std::uint16_t count(std::size_t value, const char* what) {
    if (value > std::numeric_limits<std::uint16_t>::max())
        throw data::Error(data::number::Unspecified,
                          std::string("A remote recordset cannot have so many ") + what + ".");
    return static_cast<std::uint16_t>(value);
}

/// A text as number of 16-bit units and the units.
void name(ByteWriter& out, std::string_view utf8) {
    ByteWriter wide;
    wide.utf16(utf8);
    out.u16(count(wide.size() / 2, "characters in a name"));
    out.bytes(wide.view());
}

void block(ByteWriter& out, std::uint8_t token, const ByteWriter& content) {
    out.u8(token);
    out.u16(count(content.size(), "bytes in a descriptor"));
    out.bytes(content.view());
}

ByteWriter resultDescriptor(const TablegramMetadata& metadata) {
    std::size_t visible = 0;
    for (const ColumnDescriptor& column : metadata.columns)
        visible += column.visible ? 1 : 0;
    ByteWriter out;
    out.bytes(ResultIdentifier);
    out.u16(count(visible, "columns"));
    out.u16(count(metadata.columns.size(), "columns"));
    out.u16(0); // computed columns
    out.u16(count(metadata.tables.size(), "tables"));
    out.u16(0); // columns of an ORDER BY
    out.u32(metadata.rowCount);
    out.u16(1);
    propertySet(out, AdcPropertySet, 7);
    number(out, 0x0B, 1); // recalculate automatically
    number(out, 0x13, 1); // update resync
    emptyText(out, 0x0D); // unique table, schema and catalog
    emptyText(out, 0x0E);
    emptyText(out, 0x0F);
    emptyText(out, 0x10); // resync command
    emptyText(out, 0x12); // reshape name
    return out;
}

ByteWriter recordsetContext() {
    ByteWriter out;
    out.u16(2);
    propertySet(out, RowsetPropertySet, 4);
    yes(out, 0x7F); // changes and updates are allowed
    yes(out, 0x86);
    number(out, 0x22, 30); // command time-out, seconds
    number(out, 0x49, 0);  // rows at most; 0 is all
    propertySet(out, AdcPropertySet, 5);
    number(out, 0x04, 15); // batch size
    number(out, 0x05, 2);  // update criteria: the updated columns
    number(out, 0x03, 15); // rows to fetch in the background
    number(out, 0x07, 50); // rows to fetch first
    number(out, 0x08, 3);  // priority of the fetching thread
    return out;
}

ByteWriter tableDescriptor(const TableDescriptor& table) {
    ByteWriter out;
    out.u16(table.ordinal);
    name(out, table.name);
    name(out, table.updateName);
    out.u16(0); // code page: reserved
    out.u16(table.columns);
    out.u16(count(table.keyColumns.size(), "key columns"));
    for (const std::uint16_t column : table.keyColumns)
        out.u16(column);
    return out;
}

ByteWriter columnDescriptor(const ColumnDescriptor& column, std::size_t ordinal) {
    std::uint32_t map = presence::Name | presence::AutoIncrement;
    if (column.base)
        map |= presence::BaseTable | presence::BaseColumn | presence::BaseColumnName;
    if (column.catalog)
        map |= presence::Catalog;
    if (column.schema)
        map |= presence::Schema;

    ByteWriter out;
    for (const unsigned shift : {16U, 8U, 0U})
        out.u8(static_cast<std::uint8_t>(map >> shift));
    out.u16(static_cast<std::uint16_t>(ordinal));
    name(out, column.name);
    if (column.base) {
        out.u16(column.base->table);
        out.u16(column.base->column);
        name(out, column.base->name);
    }
    out.u16(static_cast<std::uint16_t>(column.type));
    out.u32(column.maxLength);
    out.u32(column.precision);
    out.i32(column.scale);
    out.u32(column.flags);
    if (column.catalog)
        name(out, *column.catalog);
    if (column.schema)
        name(out, *column.schema);
    out.u16(0); // no automatic increment
    out.u16(column.visible ? 0xFFFF : 0);
    return out;
}

} // namespace

TablegramWriter::TablegramWriter(ByteSink sink, const TablegramMetadata& metadata,
                                 unsigned codePage)
    : sink_(std::move(sink)), codePage_(codePage), row_(metadata.columns.size()) {
    out_.bytes("\x01\x07TG!\0\0\0\0"sv); // version 0.0, little-endian, ANSI text as bytes
    out_.u8(token::HandlerOptions);
    out_.u16(static_cast<std::uint16_t>(HandlerOptionsContent.size()));
    out_.bytes(HandlerOptionsContent);
    block(out_, token::ResultDescriptor, resultDescriptor(metadata));
    block(out_, token::RecordsetContext, recordsetContext());
    for (const TableDescriptor& table : metadata.tables)
        block(out_, token::TableDescriptor, tableDescriptor(table));
    std::size_t nullableColumns = 0;
    for (const ColumnDescriptor& column : metadata.columns) {
        encoders_.emplace_back(column);
        block(out_, token::ColumnDescriptor, columnDescriptor(column, encoders_.size()));
        nullable_.push_back(column.isNullable());
        requiredNames_.push_back(column.isNullable() ? "" : column.name);
        nullableColumns += column.isNullable() ? 1 : 0;
    }
    presence_.resize((nullableColumns + 7) / 8);
}

void TablegramWriter::writeRow(const data::Cursor& cursor) {
    // Servers leave the unused bits of the map set.
    presence_.assign(presence_.size(), 0xFF);
    std::size_t bit = 0;
    for (std::size_t column = 0; column < row_.size(); ++column) {
        row_[column] = cursor.value(column);
        if (!nullable_[column] && row_[column].isNull())
            throw data::Error(data::number::InvalidUseOfNull,
                              "The column " + requiredNames_[column] + " must not be Null.");
        if (nullable_[column]) {
            if (row_[column].isNull())
                presence_[bit / 8] =
                    static_cast<std::uint8_t>(presence_[bit / 8] & ~(0x80U >> bit % 8));
            ++bit;
        }
    }
    out_.u8(token::Row);
    for (const std::uint8_t byte : presence_)
        out_.u8(byte);
    for (std::size_t column = 0; column < row_.size(); ++column) {
        if (!row_[column].isNull())
            encoders_[column].encode(row_[column], codePage_, out_);
    }
    if (out_.size() >= PieceSize)
        flush();
}

void TablegramWriter::finish() {
    out_.u8(token::Done);
    flush();
}

void TablegramWriter::flush() {
    sink_(out_.view());
    out_.clear();
}

} // namespace quillet::rds
