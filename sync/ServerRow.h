#pragma once

#include "data/Recordset.h"

#include <cstddef>
#include <string>

namespace quillet::sync {

/// The current row of a server recordset as receivers read it: by position in the query's select
/// list, as text or as number.
class ServerRow {
public:
    explicit ServerRow(const data::Recordset& rows) noexcept : rows_(rows) {}

    bool isNull(std::size_t field) const { return rows_.Item(field).isNull(); }

    /// Null is empty text.
    std::string text(std::size_t field) const { return rows_.Item(field).toText(); }
    void appendTextTo(std::string& out, std::size_t field) const {
        rows_.Item(field).appendTextTo(out);
    }

    /// By the leading-number rule.
    /// @throws data::Error 94 for Null.
    double number(std::size_t field) const;

    /// Appends the same as numberText() has it.
    void appendNumberTo(std::string& out, std::size_t field) const;

private:
    const data::Recordset& rows_;
};

} // namespace quillet::sync
