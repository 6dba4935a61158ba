#pragma once

#include "data/Value.h"
#include "rds/ByteWriter.h"
#include "rds/tablegram/CodePage.h"
#include "rds/tablegram/TablegramMetadata.h"

#include <string>

namespace quillet::rds {

/// Writes the values of one column, converting them to its type.
class CellEncoder {
public:
    /// @throws data::Error `number::Unspecified` for a type that no row can hold.
    explicit CellEncoder(const ColumnDescriptor& column);

    /// Appends one value. What has been written when it throws is no valid row.
    /// @param value not Null.
    /// @throws data::Error 13 when the value cannot be converted to the column's type, 6 when it is
    ///         outside of the type's range or does not fit the column.
    void encode(const data::Value& value, const CodePage& codePage, ByteWriter& out) const;

private:
    void integer(const data::Value& value, ByteWriter& out) const;
    void single(double value, ByteWriter& out) const;
    void decimal(const data::Value& value, ByteWriter& out) const;
    void numeric(const data::Value& value, ByteWriter& out) const;
    void text(std::string_view utf8, const CodePage& codePage, ByteWriter& out) const;
    void wideText(std::string_view utf8, ByteWriter& out) const;
    void prefixed(std::string_view bytes, char padding, ByteWriter& out) const;
    std::uint32_t checkedSize(std::size_t size) const;
    [[noreturn]] void failOverflow() const;

    std::string name_;
    data::DataType type_;
    CellLayout layout_;
    std::uint8_t precision_;
    int scale_; ///< -1 where the column does not fix it
};

} // namespace quillet::rds
