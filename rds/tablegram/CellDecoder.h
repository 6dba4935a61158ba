#pragma once

#include "db/Arena.h"
#include "db/Value.h"
#include "rds/ByteReader.h"
#include "rds/tablegram/CodePage.h"
#include "rds/tablegram/TablegramMetadata.h"

namespace quillet::rds {

/// Reads the values of one column.
class CellDecoder {
public:
    /// @throws db::Error `number::Unspecified` for a type that no row can hold, or a column that
    ///         takes no byte in a row.
    explicit CellDecoder(const ColumnDescriptor& column);

    /// Reads one value that is present.
    /// @param arena keeps what the value borrows.
    /// @throws db::Error `number::Unspecified` when the bytes are no such value.
    db::Value decode(ByteReader& in, const CodePage& codePage, db::Arena& arena) const;

private:
    std::string_view variableBytes(ByteReader& in) const;
    db::Value ansiText(std::string_view bytes, const CodePage& codePage, db::Arena& arena) const;
    db::Value wideText(std::string_view bytes, db::Arena& arena) const;

    db::DataType type_;
    CellLayout layout_;
};

} // namespace quillet::rds
