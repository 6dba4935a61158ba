#include "db/Connection.h"
#include "db/Paths.h"
#include "db/Recordset.h"
#include "db/Transaction.h"
#include "db/sqlite/SqliteEngine.h"
#include "db/sqlite/SqliteHandle.h"
#include "tests/support/TempFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <string>

namespace quillet::db {
namespace {

using testing::HasSubstr;
using tests::TempFolder;
using tests::writeFile;

SqliteDatabase openRaw(const std::filesystem::path& file) {
    sqlite3* opened = nullptr;
    sqlite3_open(textOf(file).c_str(), &opened);
    return SqliteDatabase(opened);
}

void createStore(const std::filesystem::path& file) {
    sqlite3_exec(openRaw(file).get(),
                 "CREATE TABLE PR (PR_CODE TEXT COLLATE NOCASE PRIMARY KEY, PR_NAME VARCHAR(40),"
                 " BAS_CODE TEXT COLLATE RTRIM, PR_PRICE DOUBLE, PR_QTY INTEGER, PR_PICTURE BLOB,"
                 " PR_MEMO TEXT);"
                 "INSERT INTO PR VALUES ('A1', '갈비탕 😀', 'ZO01 ', 12000.5, 7, x'00FF', 'memo'),"
                 " ('A2', '', NULL, NULL, NULL, NULL, NULL)",
                 nullptr, nullptr, nullptr);
}

std::string embedded(const std::filesystem::path& file) {
    return "PROVIDER=MSDataShape;Driver={Microsoft Access Driver (*.mdb)};Dbq=" +
           textOf(file.filename()) + ";DefaultDir=" + textOf(file.parent_path()) +
           ";Uid=Admin;pwd=secret";
}

std::string overOdbc(const std::filesystem::path& file) {
    return "PROVIDER=MSDataShape;DRIVER={SQLite3};DATABASE=" + textOf(file) + ";NoCreat=1;";
}

/// What a call throws; fails when it throws nothing.
Error errorOf(const std::function<void()>& call) {
    try {
        call();
    } catch (const Error& error) {
        return error;
    }
    ADD_FAILURE() << "nothing was thrown";
    return Error(0, "");
}

std::string sqlStateOf(const std::function<void()>& call) {
    const Error error = errorOf(call);
    return error.providerRecords().empty() ? "no provider error"
                                           : error.providerRecords().front().SqlState;
}

/// The first row's first column.
std::string first(Connection& connection, const std::string& query) {
    Recordset rows;
    rows.Open(query, connection);
    return rows.Eof() ? "no row" : rows.Item(0).isNull() ? "Null" : rows.Item(0).toText();
}

/// The same on both engines.
struct EngineKind {
    const char* name;
    std::string (*connectionString)(const std::filesystem::path&);
};

class EngineTest : public testing::TestWithParam<EngineKind> {
protected:
    EngineTest() {
        createStore(file());
        if (GetParam().connectionString == overOdbc)
            odbc_ = true;
        connection_.Open(GetParam().connectionString(file()));
    }

    std::filesystem::path file() const { return folder_ / "food.MDB"; }

    TempFolder folder_;
    Connection connection_;
    bool odbc_ = false;
};

TEST_P(EngineTest, DeliversValuesOfEachKind) {
    Recordset rows;
    rows.Open("SELECT * FROM PR ORDER BY PR_CODE", connection_);
    ASSERT_EQ(rows.RecordCount(), 2);
    ASSERT_EQ(rows.Fields().size(), 7U);
    EXPECT_EQ(rows.Fields()[1].Name, "PR_NAME");
    EXPECT_EQ(rows.Fields()[1].DefinedSize, 40U);
    EXPECT_EQ(rows.Fields()[3].Type, DataType::Double);
    EXPECT_EQ(rows.Fields()[4].Type, DataType::Integer);
    EXPECT_EQ(rows.Fields()[5].Type, DataType::Binary);
    EXPECT_TRUE(rows.Fields()[6].longValue);
    EXPECT_EQ(rows.Item(1).toText(), "갈비탕 😀");
    EXPECT_EQ(rows.Item(2).toText(), "ZO01 ");
    EXPECT_EQ(rows.Item(3).toText(), "12000.5");
    EXPECT_EQ(rows.Item(4).toText(), "7");
    EXPECT_EQ(rows.Item(5).kind(), Value::Kind::Binary);
    EXPECT_EQ(rows.Item(5).bytes(), std::string("\0\xFF", 2));
    rows.MoveNext();
    EXPECT_FALSE(rows.Item(1).isNull());
    EXPECT_EQ(rows.Item(1).toText(), "");
    for (std::size_t column = 2; column < 7; ++column)
        EXPECT_TRUE(rows.Item(column).isNull()) << column;
}

TEST_P(EngineTest, RunsQueriesWithoutRowsAndStatementsWithThem) {
    Recordset rows;
    rows.Open("SELECT PR_CODE FROM PR WHERE PR_CODE = 'none'", connection_);
    EXPECT_TRUE(rows.Eof());
    EXPECT_EQ(rows.Fields().size(), 1U);
    connection_.Execute("SELECT * FROM PR");
    connection_.Execute("UPDATE PR SET PR_QTY = 1 WHERE PR_CODE = 'none'");
    rows.Open("UPDATE PR SET PR_QTY = 8 WHERE PR_CODE = 'A1'", connection_);
    EXPECT_TRUE(rows.Fields().empty());
    EXPECT_TRUE(rows.Eof());
    EXPECT_EQ(first(connection_, "SELECT PR_QTY FROM PR WHERE PR_CODE = 'a1'"), "8");
}

TEST_P(EngineTest, KeepsTheRecordsOfTheLatestProviderError) {
    const Error failure = errorOf([&] { connection_.Execute("SELECT * FROM NOWHERE"); });
    EXPECT_THAT(failure.Description(), HasSubstr("no such table: NOWHERE"));
    ASSERT_EQ(connection_.Errors().size(), 1U);
    EXPECT_EQ(connection_.Errors()[0].Description, failure.Description());
    EXPECT_LT(connection_.Errors()[0].Number, 0);
    connection_.Execute("SELECT 1");
    EXPECT_EQ(connection_.Errors().size(), 1U) << "a success does not clear them";

    Connection closed;
    EXPECT_EQ(errorOf([&] { closed.Execute("SELECT 1"); }).Number(), number::ConnectionClosed);
    EXPECT_TRUE(closed.Errors().empty());

    EXPECT_EQ(errorOf([&] { connection_.Open("DRIVER={No such driver}"); })
                  .providerRecords()
                  .front()
                  .SqlState,
              "01000");
    EXPECT_TRUE(connection_.IsOpen()) << "the open database stays when another cannot be opened";
    connection_.Execute("SELECT 1");
}

TEST_P(EngineTest, RollsBackUnlessCommitted) {
    {
        Transaction transaction(connection_);
        connection_.Execute("UPDATE PR SET PR_NAME = 'changed'");
        EXPECT_THROW(connection_.Execute("UPDATE NOWHERE SET X = 1"), Error);
    }
    EXPECT_EQ(first(connection_, "SELECT COUNT(*) FROM PR WHERE PR_NAME = 'changed'"), "0");
    {
        Transaction transaction(connection_);
        connection_.Execute("UPDATE PR SET PR_NAME = 'changed'");
        transaction.Commit();
    }
    EXPECT_EQ(first(connection_, "SELECT COUNT(*) FROM PR WHERE PR_NAME = 'changed'"), "2");
    {
        Connection other;
        other.Open(GetParam().connectionString(file()));
        other.BeginTrans();
        other.Execute("DELETE FROM PR");
    }
    EXPECT_EQ(first(connection_, "SELECT COUNT(*) FROM PR"), "2") << "closing rolls back too";
    EXPECT_EQ(errorOf([&] { connection_.CommitTrans(); }).Number(), -2147168242);
    connection_.BeginTrans();
    EXPECT_EQ(errorOf([&] { connection_.BeginTrans(); }).Number(), -2147168237);
    connection_.RollbackTrans();
    connection_.Execute("DELETE FROM PR");
    EXPECT_EQ(first(connection_, "SELECT COUNT(*) FROM PR"), "0") << "and each on its own again";
}

TEST_P(EngineTest, RunsOneStatementOrNone) {
    for (const std::string& statement :
         {std::string("DELETE FROM PR; DELETE FROM PR"),
          std::string("UPDATE PR SET PR_NAME = 'x'; DROP TABLE PR;"),
          std::string("UPDATE PR SET PR_NAME = 'x\0' WHERE PR_CODE = 'A1'", 49),
          std::string("UPDATE PR SET PR_NAME = 'x'\0' WHERE PR_CODE = 'A1'", 50),
          std::string("UPDATE PR SET PR_NAME = 'it's' WHERE PR_CODE = 'A1'"),
          std::string("UPDATE PR SET PR_NAME = 'x WHERE PR_CODE = 'A1'"),
          std::string("UPDATE PR SET PR_NAME = 'x' WHERE PR_CODE = ?")}) {
        EXPECT_THROW(connection_.Execute(statement), Error) << statement;
        EXPECT_THROW(connection_.query(statement), Error) << statement;
    }
    EXPECT_EQ(first(connection_, "SELECT COUNT(*) FROM PR WHERE PR_NAME <> 'x'"), "2");
    EXPECT_EQ(first(connection_, "SELECT COUNT(*) FROM PR ; \r\n"), "2");
}

TEST_P(EngineTest, ReadsManyAndLongRows) {
    connection_.Execute("CREATE TABLE LINES (N INTEGER, SHORT VARCHAR(20), LONGER TEXT)");
    connection_.Execute(
        "INSERT INTO LINES WITH RECURSIVE S(N) AS (SELECT 1 UNION ALL SELECT N + 1 FROM S WHERE "
        "N < 3000) SELECT N, 'row ' || N, NULL FROM S");
    std::string text;
    for (int i = 0; i < 20000; ++i)
        text += "가a";
    // Behind the connection's back: the driver has no Unicode calls to take the statement with.
    const auto set = [&](const std::string& assignment) {
        const std::string statement = "UPDATE LINES SET " + assignment + " WHERE N = 2";
        sqlite3_exec(openRaw(file()).get(), statement.c_str(), nullptr, nullptr, nullptr);
    };
    set("LONGER = '" + text + "'");
    for (const std::string query : {"SELECT N, SHORT FROM LINES ORDER BY N",
                                    "SELECT N, SHORT, LONGER FROM LINES ORDER BY N"}) {
        Recordset rows;
        rows.Open(query, connection_);
        ASSERT_EQ(rows.RecordCount(), 3000);
        for (int n = 1; n <= 3000; ++n, rows.MoveNext()) {
            ASSERT_EQ(rows.Item(0).toText(), std::to_string(n));
            ASSERT_EQ(rows.Item(1).toText(), "row " + std::to_string(n));
            if (rows.Fields().size() == 3) {
                ASSERT_EQ(rows.Item(2).toText(), n == 2 ? text : "");
            }
        }
    }
    if (odbc_) {
        // This driver lets texts be longer than their column says; half a text is no text.
        set("SHORT = '" + text + "'");
        EXPECT_EQ(sqlStateOf([&] { first(connection_, "SELECT SHORT FROM LINES"); }), "01004");
        EXPECT_EQ(connection_.Errors().front().SqlState, "01004");
    }
}

INSTANTIATE_TEST_SUITE_P(Engines, EngineTest,
                         testing::Values(EngineKind{"Embedded", embedded},
                                         EngineKind{"Odbc", overOdbc}),
                         [](const auto& engine) { return std::string(engine.param.name); });

/// The embedded engine alone.
class EmbeddedStoreTest : public testing::Test {
protected:
    EmbeddedStoreTest() { createStore(file()); }

    std::filesystem::path file() const { return folder_ / "food.MDB"; }

    TempFolder folder_;
    Connection connection_;
};

TEST_F(EmbeddedStoreTest, GivesEachErrorItsSqlState) {
    connection_.Open(embedded(file()));
    const auto stateOf = [this](const std::string& statement) {
        return sqlStateOf([&] { connection_.Execute(statement); });
    };
    EXPECT_EQ(stateOf("INSERT INTO PR (PR_CODE) VALUES ('a1')"), "23000");
    EXPECT_EQ(stateOf("SELECT * FROM NOWHERE"), "42S02");
    EXPECT_EQ(stateOf("SELECT MISSING FROM PR"), "07002");
    EXPECT_EQ(stateOf("SELECT * FROM PR WHERE PR_CODE = ?"), "07002");
    EXPECT_EQ(stateOf("UPDATE PR SET"), "42000");
    EXPECT_EQ(stateOf("UPDATE PR SET PR_QTY = 1,,,"), "42000");
    EXPECT_EQ(stateOf(""), "42000");
    EXPECT_EQ(stateOf(" ; "), "42000");
    EXPECT_EQ(stateOf("UPDATE PR SET PR_NAME = 'x' -- ' WHERE PR_CODE = 'A1'"), "42000");
    EXPECT_EQ(errorOf([&] { connection_.Execute("DELETE FROM PR;;"); }).Description(),
              "Characters found after end of SQL statement.");
}

TEST_F(EmbeddedStoreTest, ComparesAsItsColumnsDo) {
    connection_.Open(embedded(file()));
    Recordset rows;
    rows.Open("SELECT PR_CODE, BAS_CODE, PR_NAME, PR_CODE + PR_NAME AS COL0, COUNT(*),"
              " (SELECT BAS_CODE FROM PR) FROM PR",
              connection_);
    EXPECT_EQ(rows.Fields()[0].comparison, TextComparison::NoCase);
    EXPECT_EQ(rows.Fields()[1].comparison, TextComparison::RTrim);
    EXPECT_EQ(rows.Fields()[2].comparison, TextComparison::Binary);
    EXPECT_EQ(rows.Fields()[3].comparison, TextComparison::NoCase);
    EXPECT_EQ(rows.Fields()[3].Name, "COL0");
    EXPECT_EQ(rows.Fields()[4].Type, DataType::Integer);

    rows.Open("SELECT PR_CODE + PR_NAME AS COL0 FROM PR", connection_);
    rows.Find(" COL0 = 'a1갈비탕 😀' ");
    EXPECT_FALSE(rows.Eof());
    rows.Open("SELECT BAS_CODE FROM PR WHERE BAS_CODE = 'ZO01'", connection_);
    EXPECT_EQ(rows.RecordCount(), 1);
    rows.Find("BAS_CODE = 'ZO01'");
    EXPECT_FALSE(rows.Eof());
}

TEST_F(EmbeddedStoreTest, RefusesWhatIsNoStoreAndNeverMakesOne) {
    struct Case {
        std::string name;
        std::string contents;
        std::string complaint;
    };
    const std::string header("SQLite format 3\0", 16);
    for (const Case& each :
         {Case{"text.MDB", "this is no database at all", "is not a database"},
          Case{"short.MDB", "abc", "is not a database"}, Case{"empty.MDB", "", "is empty"},
          Case{"jet.MDB", std::string("\0\1\0\0Standard Jet DB\0", 20) + std::string(4096, '\0'),
               "no Access ODBC driver"},
          Case{"ace.MDB", std::string("\0\1\0\0Standard ACE DB\0", 20) + std::string(4096, '\0'),
               "no Access ODBC driver"},
          Case{"broken.MDB", header + std::string(4096, 'x'), "cannot be opened"}}) {
        writeFile(folder_ / each.name, each.contents);
        const Error error = errorOf([&] { connection_.Open(embedded(folder_ / each.name)); });
        EXPECT_THAT(error.Description(), HasSubstr(each.complaint));
        EXPECT_THAT(error.Description(), HasSubstr(textOf(folder_ / each.name)));
        EXPECT_EQ(connection_.Errors().front().Description, error.Description());
        EXPECT_EQ(tests::readFile(folder_ / each.name), each.contents);
    }
    EXPECT_THAT(errorOf([&] { connection_.Open(embedded(folder_ / "none.MDB")); }).Description(),
                HasSubstr("does not exist"));
    EXPECT_FALSE(std::filesystem::exists(folder_ / "none.MDB"));
    std::filesystem::create_directory(folder_ / "folder.MDB");
    EXPECT_THAT(errorOf([&] { connection_.Open(embedded(folder_ / "folder.MDB")); }).Description(),
                HasSubstr("is a folder"));
    EXPECT_FALSE(connection_.IsOpen());
}

TEST_F(EmbeddedStoreTest, FindsItsFileAsTheConnectionStringSays) {
    const std::filesystem::path folder = folder_ / "외식업";
    std::filesystem::create_directory(folder);
    createStore(folder / "food.MDB");
    connection_.Open(embedded(folder / "food.MDB"));
    connection_.Execute("DELETE FROM PR");
    connection_.Open("driver={MICROSOFT ACCESS DRIVER (*.MDB)};DefaultDir=/nowhere;Dbq=" +
                     textOf(file()));
    EXPECT_EQ(first(connection_, "SELECT COUNT(*) FROM PR"), "2") << "an absolute Dbq wins";
}

TEST_F(EmbeddedStoreTest, WaitsForAnotherProgramsLockButNotForEver) {
    connection_.Open(embedded(file()));
    const SqliteDatabase other = openRaw(file());
    sqlite3_exec(other.get(), "BEGIN IMMEDIATE", nullptr, nullptr, nullptr);
    const auto start = std::chrono::steady_clock::now();
    const Error error = errorOf([&] { connection_.BeginTrans(); });
    const auto waited = std::chrono::steady_clock::now() - start;
    EXPECT_EQ(error.Description(), "database is locked");
    EXPECT_EQ(error.Number(), number::Unspecified);
    EXPECT_GT(waited, SqliteEngine::BusyTimeout * 8 / 10);
    EXPECT_LT(waited, SqliteEngine::BusyTimeout * 2);
    EXPECT_EQ(first(connection_, "SELECT COUNT(*) FROM PR"), "2") << "reading goes on";

    sqlite3_exec(other.get(), "ROLLBACK; BEGIN EXCLUSIVE", nullptr, nullptr, nullptr);
    Connection late;
    late.Open(embedded(file()));
    sqlite3_exec(other.get(), "ROLLBACK", nullptr, nullptr, nullptr);
    Transaction transaction(late);
    late.Execute("DELETE FROM PR");
    transaction.Commit();
}

} // namespace
} // namespace quillet::db
