#pragma once

#include "db/Cursor.h"
#include "db/Recordset.h"

namespace quillet::bench {

/// Rows as the members query delivers them: 40 columns of texts, whole numbers and Nulls.
db::Recordset memberRows(int rows);

/// A cursor over a recordset, as a database would have it.
class RecordsetCursor : public db::Cursor {
public:
    explicit RecordsetCursor(db::Recordset& rows) : rows_(rows) {}

    const db::FieldList& fields() const override { return rows_.Fields(); }
    db::Value value(std::size_t column) const override { return rows_.Item(column); }
    bool next() override {
        begun_ ? rows_.MoveNext() : rows_.MoveFirst();
        begun_ = true;
        return !rows_.Eof();
    }

private:
    db::Recordset& rows_;
    bool begun_ = false;
};

} // namespace quillet::bench
