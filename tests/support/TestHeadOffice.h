#pragma once

#include "db/Connection.h"
#include "headoffice/HeadOffice.h"
#include "tests/support/RunningServer.h"

#include <cstdint>
#include <memory>
#include <sstream>
#include <string>

namespace quillet::tests {

/// A head office of a test's own: a database on the real MariaDB server that scripts/test runs,
/// with the chain's tables and no rows, behind the real HTTP server.
class TestHeadOffice {
public:
    /// Whether scripts/test (or a person) has a MariaDB server running for us.
    static bool isAvailable();

    /// @param options of the server; port and database are filled in.
    explicit TestHeadOffice(headoffice::Options options = {});
    ~TestHeadOffice();
    TestHeadOffice(const TestHeadOffice&) = delete;
    TestHeadOffice& operator=(const TestHeadOffice&) = delete;

    /// Runs a statement in the database.
    void sql(const std::string& statement) { database_.Execute(statement); }

    /// Runs a file of the sample chain: `data.sql`, `generate.sql`.
    void load(const std::string& file);

    /// First column of a query's first row, as text.
    std::string value(const std::string& query);

    /// What the server's log says once it has stopped.
    std::string log();

    /// "127.0.0.1:port" of the HTTP server.
    std::string address() const { return office_->address(); }

    /// Of the operator's pages, where the options ask for them.
    std::uint16_t adminPort() const { return office_->server().adminPort(); }

    /// What stands in a counter's settings.
    static std::string databaseServer();
    const std::string& databaseName() const { return name_; }
    static std::string databaseUser();

    std::string connectionString() const;

private:
    std::string name_;
    db::Connection database_;
    std::ostringstream log_;
    std::unique_ptr<Running<headoffice::HeadOffice>> office_;
};

} // namespace quillet::tests
