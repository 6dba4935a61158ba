#include "db/mariadb/MariaDbHandle.h"

#include "db/mariadb/MariaDbError.h"

#include <algorithm>
#include <mutex>
#include <mysqld_error.h>
#include <new>
#include <string>

namespace quillet::db {

namespace {

/// Log-ins that prove the password without showing it. The rest of what the library has would send
/// it as it is, or ask a person.
constexpr const char* AllowedLogins =
    "mysql_native_password,client_ed25519,caching_sha2_password,sha256_password";

/// The library takes a "scheme://" in front of a host for the name of a plug-in to load, and commas
/// for several hosts.
bool isHost(std::string_view text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
               c == '.' || c == '-' || c == '_' || c == ':' || c == '%';
    });
}

MYSQL* newHandle() {
    // The library's own start is not safe in several threads.
    static std::once_flag started;
    std::call_once(started, [] { mysql_library_init(0, nullptr, nullptr); });
    MYSQL* const handle = mysql_init(nullptr);
    if (handle == nullptr)
        throw std::bad_alloc();
    return handle;
}

void set(MYSQL* handle, mysql_option option, const void* value) {
    if (mysql_optionsv(handle, option, value) != 0)
        throw data::providerError("HY000", "The database client lacks an option.");
}

void set(MYSQL* handle, mysql_option option, unsigned value) {
    set(handle, option, static_cast<const void*>(&value));
}

void setOptions(MYSQL* handle, const MariaDbLogin& login) {
    set(handle, MYSQL_OPT_PROTOCOL, static_cast<unsigned>(MYSQL_PROTOCOL_TCP));
    set(handle, MYSQL_OPT_LOCAL_INFILE, 0U);
    set(handle, MYSQL_OPT_CONNECT_TIMEOUT, static_cast<unsigned>(login.connectTimeout.count()));
    set(handle, MYSQL_OPT_READ_TIMEOUT, static_cast<unsigned>(login.readTimeout.count()));
    set(handle, MYSQL_OPT_WRITE_TIMEOUT, static_cast<unsigned>(login.writeTimeout.count()));
    set(handle, MYSQL_OPT_MAX_ALLOWED_PACKET, static_cast<const void*>(&MariaDbLargestPacket));
    set(handle, MYSQL_SET_CHARSET_NAME, "utf8mb4");
    set(handle, MYSQL_PLUGIN_DIR, MARIADB_PLUGINDIR); // else an environment variable names it
    set(handle, MARIADB_OPT_RESTRICTED_AUTH, AllowedLogins);
    set(handle, MARIADB_OPT_PASSWORD, ""); // likewise, where the password is empty
    const my_bool never = 0;
    set(handle, MYSQL_OPT_RECONNECT, static_cast<const void*>(&never));
}

} // namespace

MariaDbHandle::MariaDbHandle(const MariaDbLogin& login) : handle_(newHandle()) {
    if (!isHost(login.host) || login.port == 0)
        throw data::providerError("08001", "The database server's host is no name and no address.");
    // For an empty one the library would look into the environment.
    if (login.user.empty())
        throw data::providerError("28000", "The database refuses this user or password.");
    setOptions(get(), login);
    const char* const database = login.database.empty() ? nullptr : login.database.c_str();
    if (mysql_real_connect(get(), login.host.c_str(), login.user.c_str(), login.password.c_str(),
                           database, login.port, nullptr,
                           login.foundRows ? CLIENT_FOUND_ROWS : 0) == nullptr)
        throw mariaDbLoginError(get());
    setUpSession();
}

/// What a server's own settings must not decide. The collation is the one that the ODBC driver
/// connects with.
void MariaDbHandle::setUpSession() const {
    const auto setUp = [this](const char* charset) {
        run("SET NAMES " + std::string(charset) + ", autocommit = 1, sql_auto_is_null = 0");
    };
    try {
        setUp("utf8mb4 COLLATE utf8mb4_general_ci");
    } catch (const data::Error&) {
        // Servers before MySQL 5.5.3 have utf8 only.
        if (mysql_errno(get()) != ER_UNKNOWN_CHARACTER_SET)
            throw;
        setUp("utf8");
    }
}

void MariaDbHandle::run(std::string_view statement) const {
    if (mysql_real_query(get(), statement.data(), statement.size()) != 0)
        throw mariaDbError(get());
    for (int more = 0; more == 0; more = mysql_next_result(get())) {
        if (MYSQL_RES* const rows = mysql_use_result(get()); rows != nullptr)
            mysql_free_result(rows);
        if (mysql_errno(get()) != 0)
            throw mariaDbError(get());
        if (!mysql_more_results(get()))
            return;
    }
    throw mariaDbError(get());
}

bool MariaDbHandle::reset(const MariaDbLogin& login) const noexcept try {
    // MariaDB keeps a role over the log-in where the user has none by default (observed with
    // 10.11); servers without roles refuse this.
    constexpr std::string_view NoRole = "SET ROLE NONE";
    // A connection that this finds lost must not be used again: mysql_change_user() would write
    // into a buffer that the library has freed by then (seen with Connector/C 3.3).
    if (mariadb_connection(get()) && mysql_real_query(get(), NoRole.data(), NoRole.size()) != 0 &&
        isMariaDbClientError(mysql_errno(get())))
        return false;
    // Logging in again, and not mysql_reset_connection(): that one keeps the current database, and
    // servers before MySQL 5.7 and MariaDB 10.2 do not have it.
    const char* const database = login.database.empty() ? nullptr : login.database.c_str();
    if (mysql_change_user(get(), login.user.c_str(), login.password.c_str(), database) != 0)
        return false;
    setUpSession();
    return true;
} catch (...) {
    return false;
}

} // namespace quillet::db
