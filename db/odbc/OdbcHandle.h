#pragma once

#include "data/Error.h"
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
    data::Error diagnostics() const;

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

/// A text for the ODBC calls that take UTF-16. Their length is to be given as SQL_NTS: MariaDB's
/// driver takes a length as characters, miscounts them as writtenUnits() says, and reads on behind
/// the text.
class OdbcText {
public:
    explicit OdbcText(std::string_view utf8);

    /// The calls take texts they only read as pointers to non-const.
    SQLWCHAR* data() noexcept { return reinterpret_cast<SQLWCHAR*>(units_.data()); }

private:
    std::u16string units_; ///< ends in one terminator more: the same driver may step over the first
};

/// A number where ODBC's attribute calls take a pointer.
inline SQLPOINTER odbcAttribute(std::uintptr_t value) {
    return reinterpret_cast<SQLPOINTER>(value); // NOLINT(performance-no-int-to-ptr)
}

/// Units of a text that an ODBC call has written, terminator excluded.
///
/// The terminator has the last word, since a driver may report less than it wrote: MariaDB's counts
/// a unit whose low byte is D8 to DB (a surrogate's, byte-swapped; the syllable '동' has it) and
/// the next one as one. Observed with version 3.1.15.
/// @param units without alignment, `room` of them.
/// @param reported by the driver; comes back where it is plausible, or more than fits.
std::size_t writtenUnits(const char* units, std::size_t room, std::size_t reported) noexcept;

/// A text that an ODBC call has written into `room` units, as UTF-8, as far as it fitted.
std::string utf8OfOdbc(const SQLWCHAR* units, std::size_t room, SQLSMALLINT reported);

} // namespace quillet::db
