// SQLite's ODBC driver for stores that are opened under the name of Access's. It differs from the
// plain one in what the counters' strings take for granted: the connection string names folder and
// file apart, where SQLite's driver wants one `Database=`, and the look-ups join two codes with a
// "+", which to SQLite is a sum. The driver manager finds every other function in SQLite's driver,
// to which this one is linked. scripts/torture registers it.

#include <sql.h>
#include <sqlext.h>

#include <cstring>
#include <dlfcn.h>
#include <string>
#include <string_view>

namespace {

template <typename Function>
Function* real(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

std::string textOf(const SQLCHAR* text, SQLINTEGER length) {
    const char* const start = reinterpret_cast<const char*>(text);
    return {start, length == SQL_NTS ? std::strlen(start) : static_cast<std::size_t>(length)};
}

SQLCHAR* odbcText(std::string& text) {
    return reinterpret_cast<SQLCHAR*>(text.data());
}

std::string valueOf(std::string_view key, std::string_view connectionString) {
    const std::size_t start = connectionString.find(key);
    if (start == connectionString.npos)
        return {};
    const std::string_view value = connectionString.substr(start + key.size());
    return std::string(value.substr(0, value.find(';')));
}

} // namespace

extern "C" SQLRETURN SQL_API SQLDriverConnect(SQLHDBC connection, SQLHWND window, SQLCHAR* text,
                                              SQLSMALLINT length, SQLCHAR* completed,
                                              SQLSMALLINT room, SQLSMALLINT* completedLength,
                                              SQLUSMALLINT completion) {
    std::string given = textOf(text, length);
    given += ";Database=" + valueOf("DefaultDir=", given) + '/' + valueOf("Dbq=", given);
    return real<decltype(SQLDriverConnect)>("SQLDriverConnect")(
        connection, window, odbcText(given), SQL_NTS, completed, room, completedLength, completion);
}

extern "C" SQLRETURN SQL_API SQLExecDirect(SQLHSTMT handle, SQLCHAR* text, SQLINTEGER length) {
    constexpr std::string_view Sum = "PR_CODE + PR";
    std::string statement = textOf(text, length);
    if (const std::size_t sum = statement.find(Sum); sum != statement.npos)
        statement.replace(sum, Sum.size(), "PR_CODE || PR");
    return real<decltype(SQLExecDirect)>("SQLExecDirect")(handle, odbcText(statement), SQL_NTS);
}
