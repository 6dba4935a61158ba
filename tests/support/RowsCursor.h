#pragma once

#include "data/Cursor.h"

#include <utility>
#include <vector>

namespace quillet::tests {

/// A cursor over rows made by hand. What the values borrow must outlive it.
class RowsCursor : public data::Cursor {
public:
    using Row = std::vector<data::Value>;

    RowsCursor(data::FieldList fields, std::vector<Row> rows)
        : fields_(std::move(fields)), rows_(std::move(rows)) {}

    const data::FieldList& fields() const override { return fields_; }
    bool next() override { return ++row_ <= rows_.size(); }
    data::Value value(std::size_t column) const override { return rows_.at(row_ - 1).at(column); }

private:
    data::FieldList fields_;
    std::vector<Row> rows_;
    std::size_t row_ = 0;
};

} // namespace quillet::tests
