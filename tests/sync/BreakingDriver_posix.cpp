// An ODBC driver that is SQLite's own in everything but this: on request it gives up in the middle
// of a transaction, in the two ways that databases have. The driver manager finds every other
// function in SQLite's driver, to which this one is linked.
//
//     QUILLET_BREAK=commit:3   the third writing statement is refused, and what came before it is
//                              in the database for good
//     QUILLET_BREAK=drop:3     from the third on, statements succeed without being run

#include <sql.h>
#include <sqlext.h>

#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <string>
#include <string_view>

namespace {

SQLHDBC connection = nullptr;
int written = 0;

template <typename Function>
Function* real(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

std::string_view mode() {
    const char* value = std::getenv("QUILLET_BREAK");
    return value != nullptr ? value : "";
}

bool writes(std::string_view statement) {
    return statement.find("INSERT INTO") != statement.npos ||
           statement.find("UPDATE ") != statement.npos;
}

} // namespace

extern "C" SQLRETURN SQL_API SQLSetConnectAttr(SQLHDBC handle, SQLINTEGER attribute,
                                               SQLPOINTER value, SQLINTEGER length) {
    if (attribute == SQL_ATTR_AUTOCOMMIT) {
        connection = handle;
        written = 0;
    }
    return real<decltype(SQLSetConnectAttr)>("SQLSetConnectAttr")(handle, attribute, value, length);
}

extern "C" SQLRETURN SQL_API SQLExecDirect(SQLHSTMT handle, SQLCHAR* text, SQLINTEGER length) {
    const auto execute = real<decltype(SQLExecDirect)>("SQLExecDirect");
    const std::string statement(reinterpret_cast<const char*>(text),
                                length == SQL_NTS ? std::strlen(reinterpret_cast<const char*>(text))
                                                  : static_cast<std::size_t>(length));
    const std::size_t colon = mode().find(':');
    if (colon == std::string_view::npos || !writes(statement))
        return execute(handle, text, length);
    const int breaksAt = std::atoi(mode().substr(colon + 1).data());
    if (++written < breaksAt)
        return execute(handle, text, length);
    if (mode().starts_with("drop"))
        return SQL_SUCCESS;
    real<decltype(SQLEndTran)>("SQLEndTran")(SQL_HANDLE_DBC, connection, SQL_COMMIT);
    std::string refused = "SELECT 1 FROM file_sharing_lock_count_exceeded";
    return execute(handle, reinterpret_cast<SQLCHAR*>(refused.data()), SQL_NTS);
}
