#pragma once

#include "data/Error.h"
#include "db/mariadb/MariaDbApi.h"

namespace quillet::db {

/// Why the latest call on a connection or a statement failed. What the database says is passed on
/// unchanged; the client library's own messages, which name hosts, files and accounts, become
/// neutral sentences.
data::Error mariaDbError(MYSQL* connection);
data::Error mariaDbError(MYSQL_STMT* statement);

/// Why a connection could not be made. The database's own words name accounts and hosts there, so
/// that none of them is passed on.
data::Error mariaDbLoginError(MYSQL* connection);

/// What everybody gets who uses a connection after it was lost.
data::Error mariaDbConnectionLost();

/// Whether an error number is the client library's, not the server's: 2000 to 2999 and, its own
/// additions, 5000 to 5999 (errmsg.h).
constexpr bool isMariaDbClientError(unsigned number) noexcept {
    return number / 1000 == 2 || number / 1000 == 5;
}

} // namespace quillet::db
