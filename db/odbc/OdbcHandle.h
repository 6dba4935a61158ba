#pragma once

#include "db/Error.h"
#include "db/odbc/OdbcApi.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace quillet::db {

/// An ODBC handle, freed when its owner goes.
class OdbcHandle {
public:
    /// @param type SQL_HANDLE_ENV, SQL_HANDLE_DBC or SQL_HANDLE_STMT.
    /// @param parentType,parent the handle it belongs to, where the reason of a failure is found.
    /// @throws Error when it cannot be allocated.
    OdbcHandle(SQLSMALLINT type, SQLSMALLINT parentType, SQLHANDLE parent);
    ~OdbcHandle();
    OdbcHandle(const OdbcHandle&) = delete;
    OdbcHandle& operator=(const OdbcHandle&) = delete;

    SQLHANDLE get() const noexcept { return handle_; }

    /// Passes on the result of a call on this handle.
    /// @throws Error with all of the handle's diagnostic records when the call failed.
    SQLRETURN check(SQLRETURN result) const;

    /// The handle's diagnostic records as an error: SQLSTATEs, messages unchanged.
    Error diagnostics() const;

private:
    SQLSMALLINT type_;
    SQLHANDLE handle_ = SQL_NULL_HANDLE;
};

/// An environment handle of ODBC 3 behaviour.
class OdbcEnvironment {
public:
    /// @throws Error when ODBC is not to be had.
    OdbcEnvironment();

    SQLHANDLE get() const noexcept { return handle_.get(); }
    const OdbcHandle& handle() const noexcept { return handle_; }

private:
    OdbcHandle handle_;
};

/// A text for the ODBC calls that take UTF-16.
class OdbcText {
public:
    explicit OdbcText(std::string_view utf8);

    /// The calls take texts they only read as pointers to non-const.
    SQLWCHAR* data() noexcept { return reinterpret_cast<SQLWCHAR*>(units_.data()); }

    SQLINTEGER size() const noexcept { return static_cast<SQLINTEGER>(units_.size()); }

private:
    std::u16string units_;
};

/// A number where ODBC's attribute calls take a pointer.
inline SQLPOINTER odbcAttribute(std::uintptr_t value) {
    return reinterpret_cast<SQLPOINTER>(value); // NOLINT(performance-no-int-to-ptr)
}

/// UTF-16 that an ODBC call has delivered, as UTF-8.
std::string utf8OfOdbc(const SQLWCHAR* units, std::size_t count);

} // namespace quillet::db
