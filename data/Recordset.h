#pragma once

#include "data/Arena.h"
#include "data/Cursor.h"
#include "data/Field.h"
#include "data/RowStore.h"
#include "data/Value.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace quillet::data {

/// Rows in memory, as ADO's client-side, read-only recordset: a cursor over them, their number,
/// values by column position, and `Find`. Server rows and store rows are held alike.
///
/// Members that are ADO's carry ADO's names. Using one on a closed recordset is error 3704.
class Recordset {
public:
    Recordset() = default; ///< closed

    /// Open, without rows; addRow() fills it and MoveFirst() puts the cursor on the first one.
    explicit Recordset(FieldList fields);

    Recordset(Recordset&&) noexcept = default;
    Recordset& operator=(Recordset&&) noexcept = default;
    Recordset(const Recordset&) = delete;
    Recordset& operator=(const Recordset&) = delete;
    ~Recordset() = default;

    /// Everything that a cursor has, read to its end.
    /// @param onlyColumn where it names one, the recordset has that column alone: looking keys up
    ///        takes neither the time nor the memory of the others.
    /// @throws Error what the cursor throws; 3265 for an unknown column.
    static Recordset readFrom(Cursor& cursor, std::string_view onlyColumn = {});

    void Close();
    bool IsOpen() const noexcept { return open_; }

    /// Rows, whatever the cursor's position.
    std::int32_t RecordCount() const;

    const FieldList& Fields() const;

    /// True when the cursor is behind the last row, also when there is no row at all.
    bool Eof() const;

    /// @throws Error 3021 when there is no row.
    void MoveFirst();

    /// @throws Error 3021 when the cursor is already behind the last row.
    void MoveNext();

    /// Moves to the first row, from the current one on, whose column equals a text; behind the
    /// last row when there is none. The comparison is the column's own (Field::comparison); Null
    /// equals nothing. Behaves as a scan, costs a hash look-up once the column has been indexed.
    /// @param criteria `COLUMN = 'text'`, a quote inside the text doubled.
    /// @throws Error 3001 for criteria of any other form, 3265 for an unknown column,
    ///         3021 when the cursor is not on a row.
    void Find(std::string_view criteria);

    /// The column that criteria look at.
    /// @param criteria at least up to the "=".
    static std::string_view columnOf(std::string_view criteria);

    /// A cell of the current row. What it borrows lives as long as the recordset.
    /// @throws Error 3265 for a column that is not there, 3021 when the cursor is not on a row.
    Value Item(std::size_t column) const;

    /// Appends a row.
    /// @param cells one per field; whatever they borrow must live in arena().
    void addRow(std::span<const Value> cells);
    Arena& arena() noexcept { return arena_; }

    /// Appends the current row of a cursor that has this recordset's fields.
    void addRow(const Cursor& cursor);

private:
    /// Rows of one column by their text, in the form in which its comparison rule makes equal
    /// texts identical.
    struct ColumnIndex {
        std::unordered_map<std::string, std::uint32_t> first; ///< text to its first row
        std::vector<std::uint32_t> nextEqual; ///< row to the next row of the same text
    };

    void requireOpen() const;
    void requireCurrent() const;
    std::size_t positionOf(std::string_view column) const;
    const ColumnIndex& indexOf(std::size_t column);

    FieldList fields_;
    Arena arena_;
    RowStore rows_;
    std::vector<Value> scratch_; ///< a row on its way in
    std::size_t current_ = 0;
    bool open_ = false;
    std::map<std::size_t, ColumnIndex> indexes_;
};

} // namespace quillet::data
