#include "headoffice/database/DatabaseAccess.h"

#include "data/AsciiText.h"
#include "data/Error.h"
#include "db/ConnectionString.h"
#include "headoffice/HostPort.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>
#include <utility>

namespace quillet::headoffice {

namespace {

constexpr std::array<std::string_view, 8> Keywords{"DRIVER", "SERVER", "PORT",   "DATABASE",
                                                   "UID",    "PWD",    "OPTION", "CHARSET"};

[[noreturn]] void refuse(const std::string& sentence) {
    throw data::providerError("08004", sentence);
}

/// @return 0 for an empty text.
template <typename Number>
Number numberOf(const db::ConnectionString& parts, const char* keyword) {
    const std::string text = parts.value(keyword);
    Number result = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), result);
    if (!text.empty() && (error != std::errc() || end != text.data() + text.size()))
        refuse(std::string("The value of ") + keyword +
               " in the connection string is not a number.");
    return result;
}

bool isKnown(std::string_view keyword) {
    return std::any_of(Keywords.begin(), Keywords.end(), [&](std::string_view known) {
        return data::equalIgnoringCase(keyword, known);
    });
}

} // namespace

DatabaseAccess::DatabaseAccess(std::vector<DatabaseName> allowed, std::string driver)
    : allowed_(std::move(allowed)), driver_(std::move(driver)) {}

DatabaseLogin DatabaseAccess::loginOf(const std::string& connectionString) const {
    if (connectionString.find('\0') != std::string::npos)
        refuse("The connection string has a NUL character.");
    const db::ConnectionString parts(connectionString);
    for (const std::string& keyword : parts.keys()) {
        if (!isKnown(keyword))
            refuse("The connection string has a keyword that is not served here. These are: "
                   "DRIVER, SERVER, PORT, DATABASE, UID, PWD, OPTION, CHARSET.");
    }
    const std::string driver = parts.value("DRIVER");
    if (!driver.empty() && !data::equalIgnoringCase(driver, driver_))
        refuse("The connection string names another driver than '" + driver_ + "'.");

    DatabaseLogin login;
    const auto port = numberOf<std::uint16_t>(parts, "PORT");
    const auto server = HostPort::parse(parts.value("SERVER"), 0);
    login.database.name = parts.value("DATABASE");
    if (!server || server->port != 0 || login.database.name.empty())
        refuse("The connection string has no SERVER or no DATABASE.");
    login.database.host = server->host;
    login.database.port = port == 0 ? DatabaseName::DefaultPort : port;
    if (!isAllowed(login.database))
        refuse("The database " + login.database.text() + " is not served here.");
    login.user = parts.value("UID");
    login.password = parts.value("PWD");
    login.option = numberOf<std::uint32_t>(parts, "OPTION") &
                   (DatabaseLogin::FoundRows | DatabaseLogin::BigintAsInt);
    return login;
}

bool DatabaseAccess::isAllowed(const DatabaseName& database) const {
    if (allowed_.empty())
        return HostPort{database.host, database.port}.isLoopback();
    return std::find(allowed_.begin(), allowed_.end(), database) != allowed_.end();
}

} // namespace quillet::headoffice
