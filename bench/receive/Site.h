#pragma once

#include <filesystem>
#include <string>

namespace quillet::bench {

/// The programs under test and the database server that scripts/bench has started for them.
struct Site {
    std::filesystem::path quillet;
    std::filesystem::path headOffice;
    std::filesystem::path earlierHeadOffice; ///< to compare with; may be empty
    std::string databaseServer; ///< as it stands in a counter's settings: "127.0.0.1;PORT=3307"
    std::string databaseUser;

    /// The connection string with which a counter's queries reach a database.
    std::string connectionString(const std::string& database) const;
};

} // namespace quillet::bench
