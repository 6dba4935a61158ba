#pragma once

#include "data/Cursor.h"
#include "db/odbc/OdbcColumn.h"
#include "db/odbc/OdbcHandle.h"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace quillet::db {

/// Runs one statement; its rows, if any, stay to be fetched.
/// @throws Error with the driver's records, or 42000 for a NUL character in the text.
void executeOdbc(const OdbcHandle& statement, const std::string& text);

/// Rows of a query on an ODBC database.
///
/// The driver writes straight into bound memory: a block of rows at a time where every column has a
/// modest bound. A column without one is read by itself, piece by piece, and its result comes row
/// by row; where the driver insists on order, the columns behind it are read as well.
class OdbcCursor final : public data::Cursor {
public:
    /// Memory that a block of rows should take, and the most rows in it.
    static constexpr std::size_t BlockBytes = std::size_t{256} * 1024;
    static constexpr std::size_t BlockRows = 256;

    /// Runs the query.
    OdbcCursor(SQLHDBC connection, const std::string& source, OdbcTexts texts);

    const data::FieldList& fields() const override { return fields_; }
    bool next() override;
    data::Value value(std::size_t column) const override;

private:
    struct Buffer {
        std::vector<char> cells;        ///< of all rows of the block, or of one long cell
        std::vector<SQLLEN> indicators; ///< one per row of the block
        std::vector<char> room;         ///< see odbcValue(); written to by value()
        bool bound = false;
    };

    std::size_t rowsOfBlock(SQLHDBC connection);
    void bindRows(std::size_t rows);
    void bindColumn(std::size_t column, std::size_t rows);
    void resetIndicators();
    void checkRow();
    void checkCell(std::size_t column);
    void readCell(std::size_t column);
    SQLLEN reserveLongText(std::size_t column);

    OdbcHandle statement_;
    std::vector<OdbcColumn> columns_;
    data::FieldList fields_;
    mutable std::vector<Buffer> buffers_;
    std::vector<SQLUSMALLINT> rowStatus_;
    SQLULEN fetched_ = 0;     ///< rows in the block; the driver writes it
    std::size_t row_ = 0;     ///< current row of the block
    bool readsCells_ = false; ///< some columns are not bound
    bool atEnd_ = false;
};

} // namespace quillet::db
