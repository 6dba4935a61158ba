#include "db/odbc/OdbcCursor.h"

#include "data/Error.h"

#include <algorithm>
#include <string_view>

namespace quillet::db {

namespace {

constexpr std::size_t FirstPiece = std::size_t{16} * 1024;
constexpr std::size_t UnitSize = sizeof(SQLWCHAR);

bool isVariable(SQLSMALLINT cType) {
    return cType == SQL_C_WCHAR || cType == SQL_C_CHAR || cType == SQL_C_BINARY;
}

std::size_t terminatorOf(SQLSMALLINT cType) {
    if (cType == SQL_C_WCHAR)
        return UnitSize;
    return cType == SQL_C_CHAR ? 1 : 0;
}

/// Bytes of the text in a cell of `size` bytes, of which the driver says that it wrote `reported`.
std::size_t writtenBytes(const char* cell, std::size_t size, SQLLEN reported) {
    return UnitSize *
           writtenUnits(cell, size / UnitSize, static_cast<std::size_t>(reported) / UnitSize);
}

[[noreturn]] void truncated(const data::Field& field) {
    throw data::providerError("01004", "A value of column '" + field.Name +
                                           "' is longer than the driver said it could be.");
}

} // namespace

void executeOdbc(const OdbcHandle& statement, const std::string& text) {
    if (text.find('\0') != std::string::npos)
        throw data::providerError("42000", "Syntax error: the statement holds a NUL character.");
    OdbcText units(text);
    const SQLRETURN result = SQLExecDirectW(statement.get(), units.data(), SQL_NTS);
    if (result == SQL_NEED_DATA)
        throw data::providerError("07002",
                                  "The statement has parameters; nothing is bound to them.");
    statement.check(result);
}

OdbcCursor::OdbcCursor(SQLHDBC connection, const std::string& source, OdbcTexts texts)
    : statement_(SQL_HANDLE_STMT, SQL_HANDLE_DBC, connection) {
    executeOdbc(statement_, source);
    SQLSMALLINT count = 0;
    statement_.check(SQLNumResultCols(statement_.get(), &count));
    atEnd_ = count <= 0;
    for (SQLUSMALLINT number = 1; number <= count; ++number) {
        columns_.push_back(describeOdbcColumn(statement_, number, texts));
        fields_.push_back(columns_.back().field);
    }
    buffers_.resize(columns_.size());
    if (!columns_.empty())
        bindRows(rowsOfBlock(connection));
}

/// Decides which columns are bound.
std::size_t OdbcCursor::rowsOfBlock(SQLHDBC connection) {
    SQLUINTEGER extensions = 0;
    SQLGetInfoW(connection, SQL_GETDATA_EXTENSIONS, &extensions, sizeof extensions, nullptr);
    std::size_t rowSize = 0;
    for (std::size_t column = 0; column < columns_.size(); ++column) {
        const bool inOrder = !readsCells_ || (extensions & SQL_GD_ANY_COLUMN) != 0;
        buffers_[column].bound = columns_[column].cellSize != 0 && inOrder;
        readsCells_ = readsCells_ || !buffers_[column].bound;
        rowSize += columns_[column].cellSize;
    }
    return readsCells_ ? 1 : std::clamp<std::size_t>(BlockBytes / rowSize, 1, BlockRows);
}

void OdbcCursor::bindRows(std::size_t rows) {
    SQLHSTMT statement = statement_.get();
    if (rows > 1 &&
        !SQL_SUCCEEDED(SQLSetStmtAttrW(statement, SQL_ATTR_ROW_ARRAY_SIZE, odbcAttribute(rows), 0)))
        rows = 1;
    rowStatus_.resize(rows);
    statement_.check(
        SQLSetStmtAttrW(statement, SQL_ATTR_ROW_STATUS_PTR, rowStatus_.data(), SQL_IS_POINTER));
    statement_.check(
        SQLSetStmtAttrW(statement, SQL_ATTR_ROWS_FETCHED_PTR, &fetched_, SQL_IS_POINTER));
    for (std::size_t column = 0; column < columns_.size(); ++column)
        if (buffers_[column].bound)
            bindColumn(column, rows);
}

void OdbcCursor::bindColumn(std::size_t column, std::size_t rows) {
    const OdbcColumn& description = columns_[column];
    Buffer& buffer = buffers_[column];
    buffer.cells.resize(rows * description.cellSize);
    buffer.indicators.resize(rows);
    buffer.room.resize(odbcTextRoom(description.cellSize));
    statement_.check(SQLBindCol(
        statement_.get(), static_cast<SQLUSMALLINT>(column + 1), description.cType,
        buffer.cells.data(), static_cast<SQLLEN>(description.cellSize), buffer.indicators.data()));
}

bool OdbcCursor::next() {
    if (atEnd_)
        return false;
    if (row_ + 1 < fetched_) {
        ++row_;
    } else {
        row_ = 0;
        fetched_ = 0;
        resetIndicators();
        atEnd_ = statement_.check(SQLFetch(statement_.get())) == SQL_NO_DATA;
        if (atEnd_)
            return false;
        fetched_ = std::max<SQLULEN>(fetched_, 1);
    }
    checkRow();
    for (std::size_t column = 0; readsCells_ && column < columns_.size(); ++column)
        if (!buffers_[column].bound)
            readCell(column);
    return true;
}

/// Leaves no indicator of the block before: MariaDB's driver (3.1.15) writes one for a BIT only
/// where it is Null. A text or bytes without an indicator have no length that could be right.
void OdbcCursor::resetIndicators() {
    for (std::size_t column = 0; column < columns_.size(); ++column) {
        Buffer& buffer = buffers_[column];
        if (buffer.bound)
            std::fill(buffer.indicators.begin(), buffer.indicators.end(),
                      isVariable(columns_[column].cType) ? SQL_NO_TOTAL : 0);
    }
}

void OdbcCursor::checkRow() {
    if (rowStatus_[row_] == SQL_ROW_ERROR)
        throw statement_.diagnostics();
    for (std::size_t column = 0; column < columns_.size(); ++column)
        if (buffers_[column].bound && isVariable(columns_[column].cType) &&
            buffers_[column].indicators[row_] != SQL_NULL_DATA)
            checkCell(column);
}

/// Puts the length right that the driver gives for a bound text or bytes.
void OdbcCursor::checkCell(std::size_t column) {
    const OdbcColumn& description = columns_[column];
    SQLLEN& length = buffers_[column].indicators[row_];
    const std::size_t room = description.cellSize - terminatorOf(description.cType);
    if (length < 0 || static_cast<std::size_t>(length) > room)
        truncated(fields_[column]);
    if (description.cType != SQL_C_WCHAR)
        return;
    const char* const cell = buffers_[column].cells.data() + row_ * description.cellSize;
    const std::size_t written = writtenBytes(cell, description.cellSize, length);
    if (written != static_cast<std::size_t>(length) && written >= room)
        truncated(fields_[column]);
    length = static_cast<SQLLEN>(written);
}

/// Reads one cell in as many pieces as it takes.
void OdbcCursor::readCell(std::size_t column) {
    Buffer& buffer = buffers_[column];
    const std::size_t terminator = terminatorOf(columns_[column].cType);
    if (buffer.cells.empty())
        buffer.cells.resize(columns_[column].cellSize != 0 ? columns_[column].cellSize
                                                           : FirstPiece);
    buffer.indicators.assign(1, SQL_NULL_DATA);
    if (columns_[column].cellSize == 0 && columns_[column].cType != SQL_C_BINARY &&
        reserveLongText(column) == 0) {
        // A driver may take the question for the reading; of nothing there is no more.
        buffer.indicators[0] = 0;
        return;
    }
    for (std::size_t have = 0;;) {
        SQLLEN left = 0;
        const SQLRETURN result = statement_.check(SQLGetData(
            statement_.get(), static_cast<SQLUSMALLINT>(column + 1), columns_[column].cType,
            buffer.cells.data() + have, static_cast<SQLLEN>(buffer.cells.size() - have), &left));
        if (result == SQL_NO_DATA || left == SQL_NULL_DATA) {
            if (have != 0)
                buffer.indicators[0] = static_cast<SQLLEN>(have);
            break;
        }
        const std::size_t piece = buffer.cells.size() - have - terminator;
        if (left != SQL_NO_TOTAL && static_cast<std::size_t>(left) <= piece) {
            buffer.indicators[0] = static_cast<SQLLEN>(have + static_cast<std::size_t>(left));
            break;
        }
        have += piece;
        const std::size_t more =
            left == SQL_NO_TOTAL ? have : static_cast<std::size_t>(left) - piece;
        buffer.cells.resize(have + more + terminator);
    }
    if (columns_[column].cType == SQL_C_WCHAR && buffer.indicators[0] != SQL_NULL_DATA)
        buffer.indicators[0] = static_cast<SQLLEN>(
            writtenBytes(buffer.cells.data(), buffer.cells.size(), buffer.indicators[0]));
    buffer.room.resize(std::max(buffer.room.size(), odbcTextRoom(buffer.cells.size())));
}

/// Makes room for a text without a bound, so that it comes in one piece where the driver knows its
/// length beforehand.
/// @return the length in bytes, or SQL_NULL_DATA, or SQL_NO_TOTAL.
SQLLEN OdbcCursor::reserveLongText(std::size_t column) {
    Buffer& buffer = buffers_[column];
    SQLLEN length = 0;
    statement_.check(SQLGetData(statement_.get(), static_cast<SQLUSMALLINT>(column + 1),
                                columns_[column].cType, buffer.cells.data(), 0, &length));
    // A wide text's length may be miscounted, by half at worst.
    if (length > 0)
        buffer.cells.resize(std::max(
            buffer.cells.size(), odbcWideCellSize(static_cast<std::size_t>(length) / UnitSize)));
    return length;
}

data::Value OdbcCursor::value(std::size_t column) const {
    const OdbcColumn& description = columns_[column];
    Buffer& buffer = buffers_[column];
    const std::size_t row = buffer.bound ? row_ : 0;
    const SQLLEN length = buffer.indicators[row];
    if (length == SQL_NULL_DATA)
        return {};
    const char* const cell = buffer.cells.data() + row * description.cellSize;
    const std::size_t size =
        isVariable(description.cType) ? static_cast<std::size_t>(length) : description.cellSize;
    return odbcValue(description, {cell, size}, buffer.room.data());
}

} // namespace quillet::db
