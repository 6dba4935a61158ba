#pragma once

#include "data/Arena.h"
#include "data/Value.h"
#include "rds/ByteReader.h"
#include "rds/tablegram/CodePage.h"
#include "rds/tablegram/TablegramMetadata.h"

namespace quillet::rds {

/// Reads the values of one column.
class CellDecoder {
public:
    /// @throws data::Error `number::Unspecified` for a type that no row can hold, or a column that
    ///         takes no byte in a row.
    explicit CellDecoder(const ColumnDescriptor& column);

    /// Reads one value that is present.
    /// @param arena keeps what the value borrows.
    /// @throws data::Error `number::Unspecified` when the bytes are no such value.
    data::Value decode(ByteReader& in, const CodePage& codePage, data::Arena& arena) const;

private:
    std::string_view variableBytes(ByteReader& in) const;
    data::Value ansiText(std::string_view bytes, const CodePage& codePage,
                         data::Arena& arena) const;
    data::Value wideText(std::string_view bytes, data::Arena& arena) const;

    data::DataType type_;
    CellLayout layout_;
};

} // namespace quillet::rds
