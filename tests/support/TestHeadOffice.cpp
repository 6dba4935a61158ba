#include "tests/support/TestHeadOffice.h"

#include "data/Recordset.h"
#include "tests/support/TempFolder.h"

#include <cstdlib>
#include <random>

namespace quillet::tests {

namespace {

std::string environment(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
}

std::string connectionStringOf(const std::string& database) {
    return "DRIVER={MySQL ODBC 3.51 Driver};SERVER=" + TestHeadOffice::databaseServer() +
           ";DATABASE=" + database + ";UID=" + TestHeadOffice::databaseUser() +
           ";PWD=mq5307;OPTION=16386";
}

/// Statements of an SQL file; none of ours has a semicolon at a line's end inside a text.
std::vector<std::string> statementsOf(const std::string& script) {
    std::vector<std::string> statements;
    std::string statement;
    std::istringstream lines(script);
    for (std::string line; std::getline(lines, line);) {
        // The client's own character set is none of a driver's business.
        if (line.starts_with("--") || line.starts_with("SET NAMES"))
            continue;
        statement += line + "\n";
        if (line.ends_with(';')) {
            statement.resize(statement.size() - 2);
            statements.push_back(std::move(statement));
            statement.clear();
        }
    }
    return statements;
}

} // namespace

bool TestHeadOffice::isAvailable() {
    return !environment("CHAIN_PORT").empty();
}

std::string TestHeadOffice::databaseServer() {
    return environment("CHAIN_HOST") + ";PORT=" + environment("CHAIN_PORT");
}

std::string TestHeadOffice::databaseUser() {
    return environment("CHAIN_USER");
}

TestHeadOffice::TestHeadOffice(headoffice::Options options)
    : name_("quillet_test_" + std::to_string(std::random_device{}())) {
    {
        db::Connection server;
        server.Open(connectionStringOf(environment("CHAIN_DB")));
        server.Execute("CREATE DATABASE " + name_ + " DEFAULT CHARACTER SET utf8mb4");
    }
    database_.Open(connectionString());
    load("schema.sql");
    options.listen.port = 0;
    options.databases.push_back(headoffice::DatabaseName::parse(
        environment("CHAIN_HOST") + ':' + environment("CHAIN_PORT") + '/' + name_));
    office_ = std::make_unique<Running<headoffice::HeadOffice>>(options, log_);
}

void TestHeadOffice::load(const std::string& file) {
    for (const std::string& statement :
         statementsOf(readFile(QUILLET_SOURCE_DIR "/headoffice/chain/" + file)))
        database_.Execute(statement);
}

TestHeadOffice::~TestHeadOffice() {
    office_.reset();
    try {
        database_.Execute("DROP DATABASE " + name_);
    } catch (const data::Error&) {
        return; // the server goes with the test run anyway
    }
}

std::string TestHeadOffice::log() {
    office_->stop();
    return log_.str();
}

std::string TestHeadOffice::value(const std::string& query) {
    data::Recordset rows = database_.read(query);
    return rows.Eof() ? "no row" : rows.Item(0).toText();
}

std::string TestHeadOffice::connectionString() const {
    return connectionStringOf(name_);
}

} // namespace quillet::tests
