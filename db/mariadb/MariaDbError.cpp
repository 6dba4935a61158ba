#include "db/mariadb/MariaDbError.h"

#include <errmsg.h>
#include <mysqld_error.h>
#include <string>

namespace quillet::db {

namespace {

data::Error errorOf(unsigned number, const char* state, const char* text) {
    switch (number) {
    case CR_SERVER_GONE_ERROR:
    case CR_SERVER_LOST:
    case CR_SERVER_LOST_EXTENDED:
        return mariaDbConnectionLost();
    case CR_NET_PACKET_TOO_LARGE:
        return data::providerError("HY000", "A statement or a row is larger than 16 MiB.");
    default:
        break;
    }
    if (isMariaDbClientError(number))
        return data::providerError("HY000",
                                   "The database client failed (" + std::to_string(number) + ").");
    return data::providerError(state, text);
}

} // namespace

data::Error mariaDbError(MYSQL* connection) {
    return errorOf(mysql_errno(connection), mysql_sqlstate(connection), mysql_error(connection));
}

data::Error mariaDbError(MYSQL_STMT* statement) {
    return errorOf(mysql_stmt_errno(statement), mysql_stmt_sqlstate(statement),
                   mysql_stmt_error(statement));
}

data::Error mariaDbLoginError(MYSQL* connection) {
    const unsigned number = mysql_errno(connection);
    switch (number) {
    case ER_DBACCESS_DENIED_ERROR:
    case ER_ACCESS_DENIED_ERROR:
    case ER_ACCESS_DENIED_NO_PASSWORD_ERROR:
        return data::providerError("28000", "The database refuses this user or password.");
    case ER_BAD_DB_ERROR:
        return data::providerError("42000", "The server has no database of this name.");
    case ER_CON_COUNT_ERROR:
    case ER_TOO_MANY_USER_CONNECTIONS:
    case ER_USER_LIMIT_REACHED:
        return data::providerError("08004", "The database server takes no more connections.");
    case ER_HOST_IS_BLOCKED:
    case ER_HOST_NOT_PRIVILEGED:
        return data::providerError("08004", "The database server takes no connections from here.");
    case ER_NOT_SUPPORTED_AUTH_MODE:
    case CR_AUTH_PLUGIN_CANNOT_LOAD:
    case CR_AUTH_PLUGIN_ERR:
        return data::providerError(
            "28000", "The database server asks for a log-in of a kind that is not allowed.");
    case CR_CONNECTION_ERROR:
    case CR_CONN_HOST_ERROR:
    case CR_UNKNOWN_HOST:
        return data::providerError("08001", "The database server does not answer.");
    default:
        return data::providerError("08001", "The database server cannot be used (" +
                                                std::to_string(number) + ").");
    }
}

data::Error mariaDbConnectionLost() {
    return data::providerError("08S01", "The connection to the database server is lost.");
}

} // namespace quillet::db
