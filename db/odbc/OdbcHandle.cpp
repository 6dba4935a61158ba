#include "db/odbc/OdbcHandle.h"

#include "data/Utf16.h"

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

namespace quillet::db {

namespace {

std::vector<data::ErrorRecord> diagnosticRecords(SQLSMALLINT type, SQLHANDLE handle) {
    std::vector<data::ErrorRecord> records;
    std::vector<SQLWCHAR> message(512);
    for (SQLSMALLINT number = 1;;) {
        SQLWCHAR state[SQL_SQLSTATE_SIZE + 1] = {};
        SQLINTEGER native = 0;
        SQLSMALLINT length = 0;
        const SQLRETURN result =
            SQLGetDiagRecW(type, handle, number, state, &native, message.data(),
                           static_cast<SQLSMALLINT>(message.size()), &length);
        if (!SQL_SUCCEEDED(result))
            break;
        const auto units = static_cast<std::size_t>(std::max<SQLSMALLINT>(length, 0));
        constexpr std::size_t Largest = 16384;
        if (units >= message.size() && message.size() < Largest) {
            message.resize(std::min(units + 1, Largest));
            continue;
        }
        data::ErrorRecord record;
        record.SqlState = utf8OfOdbc(state, std::size(state), SQL_SQLSTATE_SIZE);
        record.Description = utf8OfOdbc(message.data(), message.size(), length);
        record.Number = data::numberOfSqlState(record.SqlState);
        records.push_back(std::move(record));
        ++number;
    }
    if (records.empty())
        records.push_back(
            {data::number::Unspecified, "The ODBC driver failed without a reason.", "HY000"});
    return records;
}

} // namespace

OdbcHandle::OdbcHandle(SQLSMALLINT type, SQLSMALLINT parentType, SQLHANDLE parent) : type_(type) {
    if (!SQL_SUCCEEDED(SQLAllocHandle(type, parent, &handle_)))
        throw data::Error(diagnosticRecords(parentType, parent));
}

OdbcHandle::~OdbcHandle() {
    SQLFreeHandle(type_, handle_);
}

SQLRETURN OdbcHandle::check(SQLRETURN result) const {
    if (!SQL_SUCCEEDED(result) && result != SQL_NO_DATA)
        throw diagnostics();
    return result;
}

data::Error OdbcHandle::diagnostics() const {
    return data::Error(diagnosticRecords(type_, handle_));
}

OdbcEnvironment::OdbcEnvironment() : handle_(SQL_HANDLE_ENV, SQL_HANDLE_ENV, SQL_NULL_HANDLE) {
    handle_.check(
        SQLSetEnvAttr(handle_.get(), SQL_ATTR_ODBC_VERSION, odbcAttribute(SQL_OV_ODBC3), 0));
}

OdbcText::OdbcText(std::string_view utf8) : units_(data::toUtf16(utf8) + u'\0') {}

std::size_t writtenUnits(const char* units, std::size_t room, std::size_t reported) noexcept {
    std::size_t written = reported;
    while (written < room && (units[2 * written] != 0 || units[2 * written + 1] != 0))
        ++written;
    return written;
}

std::string utf8OfOdbc(const SQLWCHAR* units, std::size_t room, SQLSMALLINT reported) {
    const std::size_t written =
        writtenUnits(reinterpret_cast<const char*>(units), room,
                     static_cast<std::size_t>(std::max<SQLSMALLINT>(reported, 0)));
    return data::toUtf8({reinterpret_cast<const char16_t*>(units), std::min(written, room - 1)});
}

} // namespace quillet::db
