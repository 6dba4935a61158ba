#pragma once

#include "data/Cursor.h"
#include "rds/ByteWriter.h"
#include "rds/tablegram/CellEncoder.h"
#include "rds/tablegram/CodePage.h"
#include "rds/tablegram/TablegramMetadata.h"

#include <cstddef>
#include <vector>

namespace quillet::rds {

/// Writes a recordset as a tablegram (MS-ADTG 2.2.3.14), one row at a time, in the form that
/// database servers send: every row is an unchanged one.
class TablegramWriter {
public:
    /// Writes the metadata.
    /// @param sink gets the bytes in pieces of about 64 KiB; none before the metadata has been
    ///             found to be right.
    /// @throws data::Error when a column cannot be described.
    TablegramWriter(ByteSink sink, const TablegramMetadata& metadata,
                    unsigned codePage = DefaultCodePage);

    /// Writes the current row of a cursor that has one value per column. A tablegram for which
    /// this has thrown cannot be finished.
    /// @throws data::Error 94 for Null in a column that is not nullable, and as CellEncoder.
    void writeRow(const data::Cursor& cursor);

    /// Ends the tablegram and passes the rest on.
    void finish();

private:
    void flush();

    ByteSink sink_;
    ByteWriter out_;
    CodePage codePage_;
    std::vector<CellEncoder> encoders_;
    std::vector<std::string> requiredNames_; ///< of columns that are not nullable
    std::vector<bool> nullable_;
    std::vector<data::Value> row_;
    std::vector<std::uint8_t> presence_;
};

} // namespace quillet::rds
