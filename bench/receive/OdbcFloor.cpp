#include "bench/receive/Floors.h"
#include "bench/receive/Stopwatch.h"
#include "db/odbc/OdbcHandle.h"
#include "headoffice/RowByRow.h"

namespace quillet::bench {

namespace {

constexpr std::size_t CellSize = std::size_t{64} * 1024;

void fetchAll(SQLHDBC connection, const std::string& query) {
    const db::OdbcHandle statement(SQL_HANDLE_STMT, SQL_HANDLE_DBC, connection);
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

} // namespace

double fetchByFloor(const std::string& connectionString, const std::vector<std::string>& queries) {
    const db::OdbcEnvironment environment;
    const db::OdbcHandle connection(SQL_HANDLE_DBC, SQL_HANDLE_ENV, environment.get());
    db::OdbcText text(headoffice::readingRowByRow(connectionString));
    connection.check(SQLDriverConnectW(connection.get(), nullptr, text.data(), SQL_NTS, nullptr, 0,
                                       nullptr, SQL_DRIVER_NOPROMPT));
    const Stopwatch stopwatch;
    for (const std::string& query : queries)
        fetchAll(connection.get(), query);
    const double seconds = stopwatch.seconds();
    SQLDisconnect(connection.get());
    return seconds;
}

} // namespace quillet::bench
