#pragma once

#include "data/Cursor.h"
#include "db/sqlite/SqliteHandle.h"

#include <cstddef>

namespace quillet::db {

/// Rows of a query on the embedded store.
///
/// A field has its column's declared type and collation. An expression has none: its type is that
/// of its value in the first row, and it compares as TextComparison::NoCase, because the keys that
/// queries put together of code columns must follow the rule of those columns. SQLite types each
/// value by itself, so a value may be of another kind than its field.
class SqliteCursor final : public data::Cursor {
public:
    /// Steps to the first row.
    explicit SqliteCursor(SqliteStatement statement);

    const data::FieldList& fields() const override { return fields_; }
    bool next() override;
    data::Value value(std::size_t column) const override;

private:
    SqliteStatement statement_;
    data::FieldList fields_;
    bool onRow_ = false;
    bool firstPending_ = true; ///< the row found by the constructor has not been asked for yet
};

} // namespace quillet::db
