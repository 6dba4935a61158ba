#pragma once

#include "data/Field.h"
#include "data/Value.h"

#include <cstddef>

namespace quillet::data {

/// Rows of a query as the database delivers them, forward only, one in memory at a time.
class Cursor {
public:
    virtual ~Cursor() = default;

    /// Stays valid as long as the cursor.
    virtual const FieldList& fields() const = 0;

    /// Steps to the next row (the first one at the first call).
    /// @return false after the last row.
    /// @throws Error when the database fails on the way.
    virtual bool next() = 0;

    /// A cell of the current row; what it borrows is valid until next().
    virtual Value value(std::size_t column) const = 0;
};

} // namespace quillet::data
