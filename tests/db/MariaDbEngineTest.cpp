#include "db/mariadb/MariaDbEngine.h"

#include "db/ConnectionString.h"
#include "db/odbc/OdbcEngine.h"
#include "tests/db/Queries.h"
#include "tests/support/ScriptedServer.h"

#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <future>
#include <string>
#include <thread>
#include <vector>

namespace quillet::db {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;
using testing::Not;
using tests::errorOf;
using tests::sqlStateOf;

/// The time a call takes.
std::chrono::milliseconds timeOf(const std::function<void()>& call) {
    const auto start = std::chrono::steady_clock::now();
    call();
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() -
                                                                 start);
}

/// The cells of all rows: "|" behind each, Null as "Null".
std::string cellsOf(Engine& engine, const std::string& query) {
    std::string result;
    const auto cursor = engine.query(query);
    while (cursor->next())
        for (std::size_t i = 0; i < cursor->fields().size(); ++i)
            result += (cursor->value(i).isNull() ? "Null" : cursor->value(i).toText()) + "|";
    return result;
}

/// Needs the same server as OdbcMariaDbTest.
class MariaDbEngineTest : public testing::Test {
protected:
    void SetUp() override {
        const char* const text = std::getenv("QUILLET_TEST_MARIADB");
        if (text == nullptr || *text == '\0')
            GTEST_SKIP() << "QUILLET_TEST_MARIADB is not set";
        const ConnectionString parts(text);
        login_.host = parts.value("SERVER");
        login_.port = static_cast<std::uint16_t>(std::stoi(parts.value("PORT")));
        login_.database = parts.value("DATABASE");
        login_.user = parts.value("UID");
        login_.password = parts.value("PWD");
        engine_ = std::make_unique<MariaDbEngine>(login_);
        odbc_ = std::make_unique<OdbcEngine>(text);
        engine_->execute("SET max_recursive_iterations = 1000000");
    }

    void TearDown() override {
        if (odbc_ != nullptr)
            for (const char* table : {"engine_types", "engine_rows"})
                odbc_->execute(std::string("DROP TABLE IF EXISTS ") + table);
    }

    void createRows() {
        engine_->execute("CREATE OR REPLACE TABLE engine_rows (N INT) ENGINE=InnoDB");
    }

    /// Compares every field and every cell with those that come through ODBC.
    /// @return the number of cells.
    std::size_t compare(const std::string& query) {
        SCOPED_TRACE(query);
        const auto expected = odbc_->query(query);
        const auto actual = engine_->query(query);
        const data::FieldList& fields = expected->fields();
        EXPECT_EQ(actual->fields().size(), fields.size());
        for (std::size_t i = 0; i < fields.size(); ++i)
            EXPECT_TRUE(actual->fields().at(i) == fields[i]) << fields[i].Name;
        std::size_t cells = 0;
        while (expected->next()) {
            EXPECT_TRUE(actual->next());
            for (std::size_t i = 0; i < fields.size(); ++i, ++cells) {
                const data::Value theirs = expected->value(i), ours = actual->value(i);
                EXPECT_EQ(ours.kind(), theirs.kind()) << fields[i].Name;
                EXPECT_EQ(ours.toText(), theirs.toText()) << fields[i].Name;
                if (theirs.borrows() && ours.borrows()) {
                    EXPECT_EQ(ours.bytes(), theirs.bytes()) << fields[i].Name;
                }
                if (theirs.kind() == data::Value::Kind::DateTime) {
                    EXPECT_EQ(ours.asDateTime(), theirs.asDateTime()) << fields[i].Name;
                }
            }
        }
        EXPECT_FALSE(actual->next());
        return cells;
    }

    MariaDbLogin login_;
    std::unique_ptr<MariaDbEngine> engine_;
    std::unique_ptr<OdbcEngine> odbc_;
};

TEST_F(MariaDbEngineTest, DeliversEveryColumnTypeAsThroughOdbc) {
    struct TypeCase {
        std::string declaration;
        std::vector<std::string> values;
    };
    const std::vector<TypeCase> cases = {
        {"TINYINT", {"-128", "127"}},
        {"TINYINT(1)", {"1", "0"}},
        {"TINYINT UNSIGNED", {"255", "0"}},
        {"SMALLINT", {"-32768", "32767"}},
        {"SMALLINT UNSIGNED", {"65535", "0"}},
        {"MEDIUMINT", {"-8388608", "8388607"}},
        {"MEDIUMINT UNSIGNED", {"16777215", "0"}},
        {"INT", {"-2147483648", "2147483647"}},
        {"INT UNSIGNED", {"4294967295", "0"}},
        {"INT(7) ZEROFILL", {"42", "0"}},
        {"BIGINT", {"-9223372036854775808", "9223372036854775807"}},
        {"BIGINT UNSIGNED", {"18446744073709551615", "0"}},
        {"YEAR", {"1999", "0"}},
        {"DECIMAL(12,3)", {"-123456789.125", "0.05"}},
        {"DECIMAL(38,0)", {"99999999999999999999999999999999999999", "0"}},
        {"DECIMAL(65,30)", {"-1.000000000000000000000000000001", "0"}},
        {"DECIMAL(10,2) UNSIGNED", {"12345678.90", "0"}},
        {"DECIMAL(10,2) ZEROFILL", {"3.5", "0"}},
        {"FLOAT", {"16777215", "0.1"}}, // the former has more digits than the server prints
        {"FLOAT(9,2)", {"1234.25", "-0.01"}},
        {"DOUBLE", {"1e300", "0.1"}},
        {"DOUBLE(10,3)", {"-1234.125", "0"}},
        {"BIT(1)", {"1", "0"}},
        {"BIT(9)", {"300", "1"}},
        {"BIT(64)", {"b'1'", "~0"}},
        {"DATE", {"'1999-12-31'", "'0000-00-00'"}},
        {"DATE", {"'2024-00-00'", "'9999-12-31'"}},
        {"TIME", {"'23:59:58'", "0"}},
        {"TIME(3)", {"'23:59:58.789'", "0"}},
        {"DATETIME", {"'2024-02-29 13:14:15'", "0"}},
        {"DATETIME(3)", {"'2024-02-29 13:14:15.678'", "0"}},
        {"DATETIME(6)", {"'2024-02-29 13:14:15.000001'", "0"}},
        {"TIMESTAMP(6)", {"'2024-02-29 13:14:15.5'", "0"}},
        {"CHAR(10)", {"'한글'", "' '"}},
        {"CHAR(0)", {"''", "''"}},
        {"CHAR(10) CHARACTER SET latin1", {"'café'", "''"}},
        {"VARCHAR(20) CHARACTER SET utf8mb4 COLLATE utf8mb4_bin", {"'😀동'", "' x '"}},
        {"VARCHAR(5000)", {"REPEAT('😀', 5000)", "'짧다'"}},
        {"ENUM('a','나')", {"'나'", "'a'"}},
        {"SET('x','y')", {"'x,y'", "''"}},
        {"TINYTEXT", {"'짧은 글'", "''"}},
        {"TEXT", {"REPEAT('가나다라', 5000)", "'글'"}},
        {"MEDIUMTEXT", {"REPEAT('동네 ', 50000)", "''"}},
        {"LONGTEXT", {"'긴 글'", "''"}},
        {"JSON", {"'{\"가\": 1}'", "'[]'"}},
        {"BINARY(3)", {"'abc'", "''"}},
        {"VARBINARY(300)", {"x'FF00'", "''"}},
        {"TINYBLOB", {"x'00'", "''"}},
        {"BLOB", {"REPEAT(x'00FF', 3000)", "' '"}},
        {"LONGBLOB", {"x'00FF'", "''"}},
        {"UUID", {"'12345678-1234-1234-1234-123456789abc'", "UUID()"}},
        {"POINT", {"POINT(1, 2)", "POINT(0, 0)"}},
    };
    engine_->execute("SET sql_mode = 'NO_ENGINE_SUBSTITUTION'");
    for (const std::string nullable : {" NULL", " NOT NULL"}) {
        std::string columns = "N INT NOT NULL AUTO_INCREMENT PRIMARY KEY";
        std::string rows[2];
        for (std::size_t i = 0; i < cases.size(); ++i) {
            columns += ", C" + std::to_string(i) + " " + cases[i].declaration + nullable;
            for (std::size_t row = 0; row < 2; ++row)
                rows[row] += "," + cases[i].values[row];
        }
        engine_->execute("CREATE OR REPLACE TABLE engine_types (" + columns +
                         ") CHARACTER SET utf8mb4");
        for (int i = 0; i < 2; ++i) // long and short cells take turns
            engine_->execute("INSERT INTO engine_types VALUES (NULL" + rows[0] + "),(NULL" +
                             rows[1] + ")");
        if (nullable == " NULL")
            engine_->execute("INSERT INTO engine_types (N) VALUES (NULL)");
        EXPECT_EQ(compare("SELECT * FROM engine_types"),
                  (cases.size() + 1) * (nullable == " NULL" ? 5 : 4));
        compare("SELECT x.*, y.* FROM engine_types x LEFT JOIN engine_types y ON y.N = x.N + 99");
    }
    compare("SELECT 0, ' ', CONCAT('가', 1), NULL, 1.50, -.5, -0.0, 1.5e0, IF(1, '', 2), x'4142', "
            "b'1', TRUE, 18446744073709551615, 4294967296, -5, CAST(1 AS UNSIGNED), '', PI(), "
            "CAST('a' AS BINARY), CAST('a' AS CHAR(5000)), CURDATE(), NULLIF(1, 1), @x, "
            "TIMESTAMP'2024-01-02 03:04:05.6', SEC_TO_TIME(5), '한' AS `이름`, 1 AS ``, 1/0");
    compare("SELECT COUNT(*), SUM(N), AVG(N), MAX(C18), MIN(C25), SUM(C20), GROUP_CONCAT(C33), "
            "BIT_OR(N), SUM(C20) / 3 FROM engine_types");
    for (const char* query : {"SHOW VARIABLES LIKE 'port'", "DESCRIBE engine_types",
                              "SELECT N FROM engine_types WHERE 1 = 0", "SET @y = 1"})
        compare(query);
}

TEST_F(MariaDbEngineTest, DeliversTheSampleChainAsThroughOdbc) {
    std::size_t cells = 0;
    for (const char* table : {"KIND", "PR", "PRGU", "CTP", "PRR", "PRC", "PRO", "PRS", "PROP", "ST",
                              "CT", "CTMEM", "CTCOM", "FN", "RCT", "RCTI", "RCTBAS", "BAS", "POS"})
        cells += compare(std::string("SELECT * FROM quillet_chain.") + table);
    EXPECT_GT(cells, 50'000U);
}

TEST_F(MariaDbEngineTest, TakesTheOptionsOfALogIn) {
    login_.bigintAsInt = login_.foundRows = true;
    MariaDbEngine engine(login_);
    engine.execute("CREATE OR REPLACE TABLE engine_rows (N BIGINT, U BIGINT UNSIGNED)");
    engine.execute("INSERT INTO engine_rows VALUES (-2147483648, 4294967295), (2147483648, 0)");
    const auto cursor = engine.query("SELECT N, U FROM engine_rows");
    EXPECT_EQ(cursor->fields()[0].Type, data::DataType::Integer);
    EXPECT_EQ(cursor->fields()[1].Type, data::DataType::UnsignedInt);
    ASSERT_TRUE(cursor->next());
    EXPECT_EQ(cursor->value(0).toText() + " " + cursor->value(1).toText(),
              "-2147483648 4294967295");
    EXPECT_EQ(sqlStateOf([&] { cursor->next(); }), "22003");
    engine_->execute("UPDATE engine_rows SET U = 0 WHERE U = 0");
    EXPECT_EQ(cellsOf(*engine_, "SELECT ROW_COUNT()"), "0|");
    MariaDbEngine other(login_);
    other.execute("UPDATE engine_rows SET U = 0 WHERE U = 0");
    EXPECT_EQ(cellsOf(other, "SELECT ROW_COUNT()"), "1|");
}

TEST_F(MariaDbEngineTest, EndsAStatementFromAnotherThread) {
    for (const std::string how : {"execute", "query", "rows"}) {
        SCOPED_TRACE(how);
        std::promise<void> begun;
        auto canceller = std::async(std::launch::async, [&] {
            begun.get_future().wait();
            std::this_thread::sleep_for(how == "rows" ? 0ms : 300ms);
            engine_->cancel();
        });
        const auto time = timeOf([&] {
            const data::Error error = errorOf([&] {
                if (how == "rows") {
                    const auto cursor = engine_->query("WITH RECURSIVE S AS (SELECT 1 N UNION ALL "
                                                       "SELECT N + 1 FROM S WHERE N < 300000) "
                                                       "SELECT N, REPEAT('x', 1000) FROM S");
                    cursor->next();
                    begun.set_value();
                    while (cursor->next()) {
                    }
                    return;
                }
                begun.set_value();
                if (how == "execute")
                    engine_->execute("SELECT SLEEP(20)");
                else
                    cellsOf(*engine_, "SELECT SLEEP(20)");
            });
            EXPECT_EQ(error.providerRecords().at(0).SqlState, "70100") << error.Description();
        });
        canceller.get();
        EXPECT_LT(time, 2s);
        EXPECT_EQ(cellsOf(*engine_, "SELECT 1"), "1|");
        ASSERT_TRUE(engine_->reset());
        engine_->execute("SET max_recursive_iterations = 1000000");
    }
    engine_->cancel(); // nothing runs
    EXPECT_EQ(cellsOf(*engine_, "SELECT SLEEP(0.2)"), "0|");
}

TEST_F(MariaDbEngineTest, NeverEndsTheStatementAfter) {
    // As close to the end of each as luck has it.
    std::atomic<bool> done = false;
    auto canceller = std::async(std::launch::async, [&] {
        while (!done) {
            engine_->cancel();
            std::this_thread::sleep_for(1ms);
        }
    });
    int ended = 0, whole = 0;
    for (int i = 0; i < 300; ++i)
        ++(sqlStateOf([&] { engine_->execute("SELECT SLEEP(0.001)"); }) == "70100" ? ended : whole);
    done = true;
    canceller.get();
    EXPECT_GT(ended, 0);
    for (int i = 0; i < 20; ++i)
        EXPECT_EQ(cellsOf(*engine_, "SELECT SLEEP(0.001)"), "0|");
}

TEST_F(MariaDbEngineTest, LeavesUnreadRowsAtTheServer) {
    const std::string many = "WITH RECURSIVE S AS (SELECT 1 N UNION ALL SELECT N + 1 FROM S WHERE "
                             "N < 900000) SELECT N, SLEEP(IF(N > 5000, 0.01, 0)) FROM S";
    auto cursor = engine_->query(many);
    ASSERT_TRUE(cursor->next());
    EXPECT_EQ(sqlStateOf([&] { engine_->execute("DO 1"); }), "HY010");
    EXPECT_FALSE(engine_->reset());
    EXPECT_LT(timeOf([&] { cursor.reset(); }), 2s);
    EXPECT_FALSE(engine_->isLost());
    EXPECT_EQ(cellsOf(*engine_, "SELECT 1"), "1|");
    EXPECT_TRUE(engine_->reset());
}

TEST_F(MariaDbEngineTest, ResetLeavesNothingOfTheSessionBefore) {
    createRows();
    const std::string id = cellsOf(*engine_, "SELECT CONNECTION_ID()");
    engine_->execute("SET @x = 7, SESSION sql_mode = 'ANSI', NAMES latin1");
    engine_->execute("CREATE TEMPORARY TABLE mine (a INT)");
    engine_->execute("DO GET_LOCK('quillet', 1)");
    engine_->begin();
    engine_->execute("INSERT INTO engine_rows VALUES (1)");
    engine_->execute("USE quillet_chain");

    ASSERT_TRUE(engine_->reset());
    EXPECT_EQ(cellsOf(*engine_, "SELECT CONNECTION_ID()"), id);
    EXPECT_EQ(cellsOf(*engine_, "SELECT @x, @@in_transaction, @@autocommit, DATABASE(), "
                                "@@sql_mode LIKE '%ANSI%', IS_USED_LOCK('quillet')"),
              "Null|0|1|" + login_.database + "|0|Null|");
    EXPECT_EQ(sqlStateOf([&] { engine_->execute("SELECT * FROM mine"); }), "42S02");
    EXPECT_EQ(cellsOf(*engine_, "SELECT COUNT(*) FROM engine_rows"), "0|");
    EXPECT_EQ(cellsOf(*engine_, "SELECT '동😀'"), "동😀|");
    engine_->begin();
    engine_->execute("INSERT INTO engine_rows VALUES (1)");
    engine_->commit();
    EXPECT_EQ(cellsOf(*engine_, "SELECT COUNT(*) FROM engine_rows"), "1|");
    EXPECT_EQ(cellsOf(*engine_, "SELECT @@autocommit"), "1|");
}

TEST_F(MariaDbEngineTest, NoticesThatItsConnectionIsLost) {
    const auto connectionId = [](Engine& engine) {
        std::string cell = cellsOf(engine, "SELECT CONNECTION_ID()");
        cell.pop_back();
        return cell;
    };
    MariaDbEngine idle(login_), used(login_), reading(login_);
    const auto cursor = [&] {
        const std::string id = connectionId(reading);
        auto rows = reading.query("WITH RECURSIVE S AS (SELECT 1 N UNION ALL SELECT N + 1 FROM S "
                                  "WHERE N < 900) SELECT N, REPEAT('x', 100000) FROM S");
        engine_->execute("KILL " + id);
        return rows;
    }();
    for (MariaDbEngine* engine : {&idle, &used})
        engine_->execute("KILL " + connectionId(*engine));
    EXPECT_FALSE(idle.reset());
    EXPECT_FALSE(idle.reset());
    EXPECT_NE(sqlStateOf([&] { used.execute("DO 1"); }), "no error");
    EXPECT_EQ(sqlStateOf([&] { used.execute("DO 1"); }), "08S01");
    EXPECT_FALSE(used.reset());
    EXPECT_NE(sqlStateOf([&] {
                  while (cursor->next()) {
                  }
              }),
              "no error");
    EXPECT_FALSE(cursor->next());
    EXPECT_TRUE(reading.isLost());
}

TEST_F(MariaDbEngineTest, RefusesWhatTheOdbcEngineRefuses) {
    createRows();
    for (const std::string statement :
         {"SELEC 1", "SELECT * FROM nowhere", "SELECT nothing FROM engine_rows",
          "INSERT INTO engine_rows VALUES (1); DELETE FROM engine_rows", "SELECT 1; SELECT 2",
          "KILL 4294967295"}) {
        const data::Error theirs = errorOf([&] { odbc_->execute(statement); });
        for (const bool asQuery : {false, true}) {
            const data::Error ours = errorOf([&] {
                if (asQuery)
                    engine_->query(statement);
                else
                    engine_->execute(statement);
            });
            EXPECT_EQ(ours.Number(), theirs.Number()) << statement;
            EXPECT_THAT(theirs.Description(), testing::EndsWith(ours.Description()));
            EXPECT_EQ(ours.providerRecords().at(0).SqlState,
                      theirs.providerRecords().at(0).SqlState);
        }
    }
    EXPECT_EQ(cellsOf(*engine_, "SELECT COUNT(*) FROM engine_rows"), "0|");
    EXPECT_EQ(sqlStateOf([&] { engine_->query("SELECT ?"); }), "07002");
    EXPECT_EQ(sqlStateOf([&] { engine_->execute(std::string("DO 1\0", 5)); }), "42000");
    EXPECT_EQ(sqlStateOf([&] { cellsOf(*engine_, "SELECT TIME'100:00:00'"); }), "22007");
    EXPECT_THAT(errorOf([&] {
                    engine_->execute("LOAD DATA LOCAL INFILE '/etc/hostname' INTO TABLE "
                                     "engine_rows");
                }).Number(),
                testing::Ne(0));
}

TEST_F(MariaDbEngineTest, SaysNothingOfHostsAndAccountsWhenItCannotConnect) {
    const auto connecting = [](const MariaDbLogin& login) {
        return errorOf([&] { MariaDbEngine{login}; });
    };
    std::vector<data::Error> errors;
    MariaDbLogin wrong = login_;
    wrong.password = "no";
    errors.push_back(connecting(wrong));
    EXPECT_EQ(errors.back().providerRecords().at(0).SqlState, "28000");
    wrong = login_;
    wrong.port = 1;
    errors.push_back(connecting(wrong));
    EXPECT_EQ(errors.back().providerRecords().at(0).SqlState, "08001");
    wrong = login_;
    wrong.database = "quillet_secret";
    errors.push_back(connecting(wrong));
    wrong = login_;
    wrong.user.clear();
    errors.push_back(connecting(wrong));
    // Each of these would have the library do something else than connect.
    for (const char* host : {"", "replication://127.0.0.1", "127.0.0.1,127.0.0.2", "/tmp/socket",
                             "host=127.0.0.1;plugin-dir=/tmp", "127.0.0.1:1"}) {
        wrong = login_;
        wrong.host = host;
        errors.push_back(connecting(wrong));
    }
    for (const data::Error& error : errors) {
        EXPECT_NE(error.Number(), 0);
        for (const std::string& secret : {login_.host, login_.user, std::string("/"),
                                          std::string("secret"), std::to_string(login_.port)})
            EXPECT_THAT(error.Description(), Not(HasSubstr(secret)));
    }
}

/// A packet of the MySQL protocol: length, number, content.
std::string packet(char number, const std::string& content) {
    return std::string{static_cast<char>(content.size()), '\0', '\0', number} + content;
}

/// What a server says first (MySQL Internals, "Protocol::HandshakeV10").
std::string handshake() {
    using namespace std::string_literals;
    return packet(0, "\x0A"
                     "5.5.5-10.11.6-MariaDB\0"s +
                         "\1\0\0\0"s + "12345678\0"s + // thread, first part of the challenge
                         "\x89\x82"s + "\x2D\2\0"s +   // capabilities, character set, status
                         "\x08\0"s + "\x15"s + std::string(10, '\0') + "123456789012\0"s +
                         "mysql_native_password\0"s);
}

TEST(MariaDbEngineSecurityTest, GivesAServerNeitherPasswordNorFile) {
    using namespace std::string_literals;
    MariaDbLogin login;
    login.host = "127.0.0.1";
    login.user = "u";
    login.password = "hidden-word";
    login.connectTimeout = login.readTimeout = 1s;
    const std::string askForPassword = packet(2, "\xFEmysql_clear_password\0"s);
    const std::string askForDialog = packet(2, "\xFE"
                                               "dialog\0\2Password:"s);
    const std::string welcome = packet(2, "\0\0\0\2\0\0\0"s);
    const std::string askForFile = packet(1, "\xFB/proc/self/cmdline"s);
    for (const std::vector<std::string>& answers :
         {std::vector{askForPassword}, std::vector{askForDialog},
          std::vector{welcome, askForFile}}) {
        std::string received;
        {
            tests::ScriptedServer server([&](tests::tcp::socket& socket) {
                tests::sendRaw(socket, handshake());
                for (const std::string& answer : answers) {
                    const std::string head = tests::receiveRaw(socket, 1);
                    received += head;
                    tests::sendRaw(socket, answer);
                }
                received += tests::receiveRaw(socket);
            });
            login.port = static_cast<std::uint16_t>(std::stoi(server.port()));
            EXPECT_NE(errorOf([&] { MariaDbEngine{login}; }).Number(), 0);
        }
        EXPECT_FALSE(received.empty());
        EXPECT_THAT(received, Not(HasSubstr(login.password)));
        EXPECT_THAT(received, Not(HasSubstr("test_db")));
    }
}

TEST(MariaDbEngineSecurityTest, WaitsNoLongerForASilentServerThanToldTo) {
    tests::ScriptedServer server([](tests::tcp::socket& socket) { tests::receiveRaw(socket, 1); });
    MariaDbLogin login;
    login.host = "127.0.0.1";
    login.user = "u";
    login.port = static_cast<std::uint16_t>(std::stoi(server.port()));
    login.connectTimeout = 1s;
    EXPECT_LT(timeOf([&] { EXPECT_EQ(sqlStateOf([&] { MariaDbEngine{login}; }), "08001"); }), 5s);
}

} // namespace
} // namespace quillet::db
