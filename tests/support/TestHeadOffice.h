#pragma once

#include "db/Connection.h"
#include "headoffice/HeadOffice.h"

#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace quillet::tests {

/// A head office of a test's own: a database on the real MariaDB server that scripts/test runs,
/// with the chain's tables and no rows, behind the real HTTP server.
class TestHeadOffice {
public:
    /// Whether scripts/test (or a person) has a MariaDB server running for us.
    static bool isAvailable();

    explicit TestHeadOffice(const headoffice::Options& options = testOptions());
    ~TestHeadOffice();
    TestHeadOffice(const TestHeadOffice&) = delete;
    TestHeadOffice& operator=(const TestHeadOffice&) = delete;

    /// Runs a statement in the database.
    void sql(const std::string& statement) { database_.Execute(statement); }

    /// First column of a query's first row, as text.
    std::string value(const std::string& query);

    /// "127.0.0.1:port" of the HTTP server.
    std::string address() const;

    /// What stands in a counter's settings.
    static std::string databaseServer();
    const std::string& databaseName() const { return name_; }
    static std::string databaseUser();

    std::string connectionString() const;

    static headoffice::Options testOptions();

private:
    void createTables();

    std::string name_;
    db::Connection database_;
    std::ostringstream log_;
    headoffice::HeadOffice office_;
    std::thread thread_;
};

} // namespace quillet::tests
