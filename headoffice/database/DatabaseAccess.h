#pragma once

#include "headoffice/database/DatabaseLogin.h"

#include <string>
#include <vector>

namespace quillet::headoffice {

/// Which databases callers may name, and what of their connection strings counts.
///
/// A connection string is never passed on. It may have the keywords SERVER, PORT, DATABASE, UID,
/// PWD, OPTION and CHARSET, whose values are taken out, and a DRIVER, which must be the configured
/// one; anything else (FILEDSN, SAVEFILE, INITSTMT, files of a driver) is refused, and so is a
/// driver that is a path. Texts are always exchanged as Unicode, so CHARSET changes nothing.
class DatabaseAccess {
public:
    /// @param allowed may be empty: then every database of this machine is allowed, and no other.
    /// @param driver the name that counters know it by.
    DatabaseAccess(std::vector<DatabaseName> allowed, std::string driver);

    /// @throws data::Error with a sentence for the caller.
    DatabaseLogin loginOf(const std::string& connectionString) const;

private:
    bool isAllowed(const DatabaseName& database) const;

    std::vector<DatabaseName> allowed_;
    std::string driver_;
};

} // namespace quillet::headoffice
