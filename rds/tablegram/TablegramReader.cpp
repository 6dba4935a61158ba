#include "rds/tablegram/TablegramReader.h"

#include "data/Utf16.h"
#include "rds/tablegram/CellDecoder.h"
#include "rds/tablegram/TablegramFormat.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <vector>

namespace quillet::rds {

namespace {

/// More than any database has; keeps the memory of a row in proportion to its bytes.
constexpr std::size_t MaxColumns = 4096;

/// Bytes of a column descriptor that has no optional part.
constexpr std::size_t SmallestColumn = 28;

std::string hex(unsigned value) {
    std::array<char, 12> text{};
    std::snprintf(text.data(), text.size(), "0x%02X", value);
    return text.data();
}

ByteReader block(ByteReader& in, std::uint8_t expected) {
    const std::uint8_t found = in.u8();
    if (found != expected)
        throw badReply("its recordset has a part " + hex(found) + " where " + hex(expected) +
                       " was expected");
    return in.block(in.u16());
}

std::string name(ByteReader& in) {
    const std::size_t units = in.u16();
    const std::string_view wide = in.bytes(2 * units);
    std::string result(3 * units, '\0');
    result.resize(data::utf16LeToUtf8(wide.data(), units, result.data()));
    return result;
}

void readHeader(ByteReader& in) {
    constexpr std::uint8_t ContentSize = 7;
    if (in.u8() != token::Header)
        throw badReply("its recordset is no tablegram");
    const std::uint8_t size = in.u8();
    if (size < ContentSize)
        throw badReply("its recordset has a short header");
    ByteReader content = in.block(size);
    if (content.bytes(3) != "TG!")
        throw badReply("its recordset is no tablegram");
    const unsigned major = content.u8();
    const unsigned minor = content.u8();
    if (major != 0 || minor != 0)
        throw badReply("its recordset has the unknown version " + std::to_string(major) + "." +
                       std::to_string(minor));
    if (content.u8() != 0)
        throw badReply("its recordset is big-endian, which is not supported");
    if (content.u8() != 0)
        throw badReply("its recordset has ANSI text converted to Unicode, which is not supported");
}

struct Counts {
    std::size_t columns = 0;
    std::size_t tables = 0;
};

Counts readResultDescriptor(ByteReader content) {
    Counts counts;
    content.skip(16 + 3); // identifier, information, cursor model, normalization
    content.skip(2);      // visible columns; every column says itself whether it is one
    counts.columns = content.u16();
    content.skip(2); // computed columns
    counts.tables = content.u16();
    content.skip(2); // columns of an ORDER BY
    // Rows, of which more may come from a server that fetches in the background, and fewer from
    // one that filters them: the end token alone tells where they end.
    content.skip(4);
    if (counts.columns == 0 || counts.columns > MaxColumns)
        throw badReply("its recordset has " + std::to_string(counts.columns) + " columns");
    return counts;
}

/// Skips what stands between the schema's name and the visibility of a column.
void skipRareParts(ByteReader& content, std::uint32_t map) {
    struct Part {
        std::uint32_t flag;
        std::size_t size;
    };
    static constexpr std::array<Part, 4> BeforeSearchable{{{presence::CollatingSequence, 4},
                                                           {presence::ComputeMode, 4},
                                                           {presence::DateTimePrecision, 4},
                                                           {presence::DefaultValue, 16}}};
    static constexpr std::array<Part, 3> Flags{
        {{presence::AutoIncrement, 2}, {presence::CaseSensitive, 2}, {presence::MultiValued, 2}}};
    static constexpr std::array<Part, 2> AfterSearchable{
        {{presence::Unique, 2}, {presence::OctetLength, 4}}};
    const auto skip = [&](const auto& parts) {
        for (const Part& part : parts) {
            if ((map & part.flag) != 0)
                content.skip(part.size);
        }
    };
    skip(BeforeSearchable);
    skip(Flags);
    if ((map & presence::Searchable) != 0) {
        // Two or four bytes: the protocol's documents contradict each other, the size decides.
        std::size_t behind = 2;
        for (const Part& part : AfterSearchable)
            behind += (map & part.flag) != 0 ? part.size : 0;
        content.skip(content.remaining() == behind + 4 ? 4 : 2);
    }
    skip(AfterSearchable);
}

ColumnDescriptor readColumn(ByteReader content) {
    std::uint32_t map = 0;
    for (int i = 0; i < 3; ++i)
        map = map << 8U | content.u8();
    content.skip(2); // ordinal
    const auto has = [map](std::uint32_t part) { return (map & part) != 0; };

    ColumnDescriptor column;
    if (has(presence::Name))
        column.name = name(content);
    if (has(presence::BaseTable))
        content.skip(2);
    if (has(presence::BaseColumn))
        content.skip(2);
    if (has(presence::BaseColumnName))
        name(content);
    column.type = static_cast<data::DataType>(content.u16());
    column.maxLength = content.u32();
    column.precision = content.u32();
    column.scale = content.i32();
    column.flags = content.u32();
    if (has(presence::Catalog))
        name(content);
    if (has(presence::Schema))
        name(content);
    skipRareParts(content, map);
    column.visible = content.u16() != 0;
    if (column.type == data::DataType::Chapter || (column.flags & columnflag::Chapter) != 0)
        throw badReply("its recordset is hierarchical, which is not supported");
    return column;
}

class Rows {
public:
    Rows(const std::vector<ColumnDescriptor>& columns, unsigned codePage)
        : recordset_(visibleFields(columns)), codePage_(codePage), row_(columns.size()),
          visibleCells_(recordset_.Fields().size()), mapSize_((columns.size() + 7) / 8) {
        columns_.reserve(columns.size());
        for (const ColumnDescriptor& column : columns) {
            columns_.push_back({CellDecoder(column), column.isNullable(), column.visible});
            nullableColumns_ += column.isNullable() ? 1 : 0;
        }
    }

    /// Reads up to the token that ends the tablegram.
    data::Recordset read(ByteReader& in) {
        for (;;) {
            const std::uint8_t next = in.u8();
            switch (next) {
            case token::Row:
                keep();
                readRow(in);
                pending_ = Pending::Original;
                break;
            case token::ChangedRow:
                if (pending_ != Pending::Original)
                    throw badReply("a changed row follows no original one");
                readChanges(in);
                pending_ = Pending::Final;
                break;
            case token::DeletedRow:
                if (pending_ != Pending::Original)
                    throw badReply("a deleted row follows no original one");
                pending_ = Pending::None;
                break;
            case token::InsertedRow:
                keep();
                std::fill(row_.begin(), row_.end(), data::Value());
                readChanges(in);
                pending_ = Pending::Final;
                break;
            case token::Done:
                keep();
                return std::move(recordset_);
            case token::ResultDescriptor:
            case token::ChildRow:
            case token::ChangedChildRow:
            case token::DeletedChildRow:
            case token::InsertedChildRow:
                throw badReply("its recordset is hierarchical, which is not supported");
            default:
                throw badReply("a row starts with " + hex(next));
            }
        }
    }

private:
    struct Column {
        CellDecoder decoder;
        bool nullable;
        bool visible;
    };

    /// Whether row_ holds a row that is not yet in the recordset, and may still change.
    enum class Pending { None, Original, Final };

    static data::FieldList visibleFields(const std::vector<ColumnDescriptor>& columns) {
        data::FieldList fields;
        fields.reserve(columns.size());
        for (const ColumnDescriptor& column : columns) {
            if (column.visible)
                fields.push_back(fieldOf(column));
        }
        if (fields.empty())
            throw badReply("its recordset has hidden columns only");
        return fields;
    }

    void readRow(ByteReader& in) {
        const std::string_view map = in.bytes((nullableColumns_ + 7) / 8);
        std::size_t bit = 0;
        for (std::size_t i = 0; i < columns_.size(); ++i) {
            const Column& column = columns_[i];
            const bool present = !column.nullable || mapBit(map, bit++);
            row_[i] =
                present ? column.decoder.decode(in, codePage_, recordset_.arena()) : data::Value();
        }
    }

    void readChanges(ByteReader& in) {
        const std::string_view updated = in.bytes(mapSize_);
        const std::string_view setToNull = in.bytes(mapSize_);
        for (std::size_t i = 0; i < columns_.size(); ++i) {
            if (mapBit(setToNull, i))
                row_[i] = data::Value();
            else if (mapBit(updated, i))
                row_[i] = columns_[i].decoder.decode(in, codePage_, recordset_.arena());
        }
    }

    void keep() {
        if (pending_ == Pending::None)
            return;
        auto cell = visibleCells_.begin();
        for (std::size_t i = 0; i < columns_.size(); ++i) {
            if (columns_[i].visible)
                *cell++ = row_[i];
        }
        recordset_.addRow(visibleCells_);
        pending_ = Pending::None;
    }

    data::Recordset recordset_;
    CodePage codePage_;
    std::vector<Column> columns_;
    std::vector<data::Value> row_; ///< hidden cells included
    std::vector<data::Value> visibleCells_;
    std::size_t mapSize_;
    std::size_t nullableColumns_ = 0;
    Pending pending_ = Pending::None;
};

} // namespace

data::Recordset readTablegram(ByteReader& in, unsigned codePage) {
    readHeader(in);
    block(in, token::HandlerOptions);
    const Counts counts = readResultDescriptor(block(in, token::ResultDescriptor));
    block(in, token::RecordsetContext);
    for (std::size_t i = 0; i < counts.tables; ++i)
        block(in, token::TableDescriptor);
    std::vector<ColumnDescriptor> columns;
    columns.reserve(std::min(counts.columns, in.remaining() / SmallestColumn));
    for (std::size_t i = 0; i < counts.columns; ++i)
        columns.push_back(readColumn(block(in, token::ColumnDescriptor)));

    data::Recordset recordset = Rows(columns, codePage).read(in);
    if (recordset.RecordCount() > 0)
        recordset.MoveFirst();
    return recordset;
}

} // namespace quillet::rds
