#include "bench/receive/Floors.h"

#include <vector>

namespace quillet::bench {

namespace {

constexpr std::size_t CellSize = std::size_t{64} * 1024;

} // namespace

FetchFloor::FetchFloor(const std::string& connectionString)
    : connection_(SQL_HANDLE_DBC, SQL_HANDLE_ENV, environment_.get()) {
    db::OdbcText text(connectionString);
    connection_.check(SQLDriverConnectW(connection_.get(), nullptr, text.data(), SQL_NTS, nullptr,
                                        0, nullptr, SQL_DRIVER_NOPROMPT));
}

FetchFloor::~FetchFloor() {
    SQLDisconnect(connection_.get());
}

void FetchFloor::fetch(const std::string& query) {
    const db::OdbcHandle statement(SQL_HANDLE_STMT, SQL_HANDLE_DBC, connection_.get());
    db::OdbcText text(query);
    statement.check(SQLExecDirectW(statement.get(), text.data(), SQL_NTS));
    SQLSMALLINT columns = 0;
    statement.check(SQLNumResultCols(statement.get(), &columns));
    std::vector<std::vector<char>> cells(static_cast<std::size_t>(columns));
    std::vector<SQLLEN> lengths(cells.size());
    for (std::size_t column = 0; column < cells.size(); ++column) {
        cells[column].resize(CellSize);
        statement.check(SQLBindCol(statement.get(), static_cast<SQLUSMALLINT>(column + 1),
                                   SQL_C_CHAR, cells[column].data(), CellSize, &lengths[column]));
    }
    while (statement.check(SQLFetch(statement.get())) != SQL_NO_DATA) {
    }
}

} // namespace quillet::bench
