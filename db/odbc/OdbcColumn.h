#pragma once

#include "data/Field.h"
#include "data/Value.h"
#include "db/odbc/OdbcHandle.h"

#include <cstddef>
#include <string_view>

namespace quillet::db {

/// How a connection's driver is asked for texts.
enum class OdbcTexts : unsigned char {
    Wide, ///< as UTF-16, which every driver has; some convert slowly
    Utf8  ///< as narrow text, where that is UTF-8 (see deliversUtf8())
};

/// A column of an ODBC result: what it is, and how its cells are fetched.
struct OdbcColumn {
    data::Field field;
    SQLSMALLINT cType = SQL_C_WCHAR;

    /// Bytes of one cell, a text's terminator included; 0 when there is no bound worth reserving
    /// memory for.
    std::size_t cellSize = 0;
};

/// Describes a column of an executed statement.
/// @param number counted from 1.
OdbcColumn describeOdbcColumn(const OdbcHandle& statement, SQLUSMALLINT number, OdbcTexts texts);

/// Whether a connection's driver gives every character of a narrow text as UTF-8. Only trying
/// tells: what narrow text is in depends on the driver, its version, the system and the connection
/// string.
bool deliversUtf8(SQLHDBC connection);

/// Bytes of a cell for a text: twice as many units as characters, since each may be a surrogate
/// pair, the terminator, and one more, so that a cell filled to its end is one that was cut.
/// MariaDB's driver also needs that much room; in less, SQLGetData silently drops the end of a text
/// whose length it miscounts.
constexpr std::size_t odbcWideCellSize(std::size_t characters) {
    return (2 * characters + 2) * sizeof(SQLWCHAR);
}

/// Bytes of a cell for a text in UTF-8, likewise with one more.
constexpr std::size_t odbcUtf8CellSize(std::size_t characters) {
    return 4 * characters + 2;
}

/// Bytes of UTF-8 that the text of a cell can take.
/// @param size bytes of the cell, without a terminator.
constexpr std::size_t odbcTextRoom(std::size_t size) {
    return size / 2 * 3 + 1;
}

/// A fetched cell as a value. Zero dates, which MySQL has and nothing else knows, are Null.
/// @param cell the bytes that the driver has written, without a terminator.
/// @param room memory of odbcTextRoom() bytes for decimals and for texts that are not in UTF-8
///        yet; the value borrows from it, or from the cell.
data::Value odbcValue(const OdbcColumn& column, std::string_view cell, char* room);

} // namespace quillet::db
