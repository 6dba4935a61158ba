#pragma once

#include "data/Cursor.h"
#include "data/Recordset.h"

namespace quillet::bench {

/// Rows as the members query delivers them: 40 columns of texts, whole numbers and Nulls.
data::Recordset memberRows(int rows);

/// A cursor over a recordset, as a database would have it.
class RecordsetCursor : public data::Cursor {
public:
    explicit RecordsetCursor(data::Recordset& rows) : rows_(rows) {}

    const data::FieldList& fields() const override { return rows_.Fields(); }
    data::Value value(std::size_t column) const override { return rows_.Item(column); }
    bool next() override {
        begun_ ? rows_.MoveNext() : rows_.MoveFirst();
        begun_ = true;
        return !rows_.Eof();
    }

private:
    data::Recordset& rows_;
    bool begun_ = false;
};

} // namespace quillet::bench
