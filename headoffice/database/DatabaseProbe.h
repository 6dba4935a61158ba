#pragma once

#include "headoffice/Options.h"

#include <string>
#include <vector>

namespace quillet::headoffice {

/// Whether a database can be used, for the administrator.
struct DatabaseState {
    std::string name; ///< "host:port/database"
    bool answers = false;
    std::string reason; ///< why not, in the database's words or a sentence
};

/// Looks at every database that callers may name: as the server's own user where it has one, who
/// must be able to read something in it, or else from outside, where it is enough that the database
/// server refuses a stranger.
class DatabaseProbe {
public:
    /// @throws data::Error when the password's file cannot be read.
    explicit DatabaseProbe(const Options& options);

    /// Asks them one after the other, now.
    std::vector<DatabaseState> look() const;

private:
    DatabaseState look(const DatabaseName& database) const;

    std::vector<DatabaseName> databases_;
    std::string driver_;
    std::string user_;
    std::string password_;
};

} // namespace quillet::headoffice
