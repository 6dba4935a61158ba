#include "data/Recordset.h"
#include "db/Transaction.h"
#include "db/sqlite/SqliteEngine.h"
#include "db/sqlite/SqliteHandle.h"
#include "files/Paths.h"
#include "tests/db/Queries.h"
#include "tests/support/TempFolder.h"

#include <gmock/gmock.h>

#include <chrono>
#include <string>

namespace quillet::db {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using tests::cells;
using tests::errorOf;
using tests::sqlStateOf;
using tests::TempFolder;
using tests::writeFile;

SqliteDatabase openRaw(const std::filesystem::path& file) {
    sqlite3* opened = nullptr;
    sqlite3_open(files::textOf(file).c_str(), &opened);
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
           files::textOf(file.filename()) + ";DefaultDir=" + files::textOf(file.parent_path()) +
           ";Uid=Admin;pwd=secret";
}

std::string overOdbc(const std::filesystem::path& file) {
    return "PROVIDER=MSDataShape;DRIVER={SQLite3};DATABASE=" + files::textOf(file) + ";NoCreat=1;";
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
        connection_.Open(GetParam().connectionString(file()));
    }

    std::filesystem::path file() const { return folder_ / "food.MDB"; }

    TempFolder folder_;
    Connection connection_;
};

TEST_P(EngineTest, DeliversValuesOfEachKind) {
    data::Recordset rows = connection_.read("SELECT * FROM PR ORDER BY PR_CODE");
    ASSERT_EQ(rows.Fields().size(), 7U);
    EXPECT_EQ(rows.Fields()[1].Name, "PR_NAME");
    EXPECT_EQ(rows.Fields()[1].DefinedSize, 40U);
    EXPECT_EQ(rows.Fields()[3].Type, data::DataType::Double);
    EXPECT_EQ(rows.Fields()[4].Type, data::DataType::Integer);
    EXPECT_EQ(rows.Fields()[5].Type, data::DataType::Binary);
    EXPECT_TRUE(rows.Fields()[6].longValue);
    EXPECT_EQ(rows.Item(5).kind(), data::Value::Kind::Binary);
    EXPECT_EQ(rows.Item(5).bytes(), std::string("\0\xFF", 2));
    EXPECT_EQ(cells(connection_, "SELECT PR_CODE,PR_NAME,BAS_CODE,PR_PRICE,PR_QTY,PR_MEMO FROM PR "
                                 "ORDER BY PR_CODE"),
              "A1|갈비탕 😀|ZO01 |12000.5|7|memo|A2||Null|Null|Null|Null|");

    rows = connection_.read("SELECT PR_CODE FROM PR WHERE PR_CODE = 'none'");
    EXPECT_TRUE(rows.Eof());
    EXPECT_EQ(rows.Fields().size(), 1U);
    connection_.Execute("SELECT * FROM PR");
    connection_.Execute("UPDATE PR SET PR_QTY = 1 WHERE PR_CODE = 'none'");
    rows = connection_.read("UPDATE PR SET PR_QTY = 8 WHERE PR_CODE = 'A1'");
    EXPECT_TRUE(rows.Fields().empty());
    EXPECT_TRUE(rows.Eof());
    EXPECT_EQ(cells(connection_, "SELECT PR_QTY FROM PR WHERE PR_CODE = 'a1'"), "8|");
}

TEST_P(EngineTest, KeepsTheRecordsOfTheLatestProviderError) {
    const data::Error failure = errorOf([&] { connection_.Execute("SELECT * FROM NOWHERE"); });
    EXPECT_THAT(failure.Description(), HasSubstr("no such table: NOWHERE"));
    ASSERT_EQ(connection_.Errors().size(), 1U);
    EXPECT_EQ(connection_.Errors()[0].Description, failure.Description());
    EXPECT_LT(connection_.Errors()[0].Number, 0);
    connection_.Execute("SELECT 1");
    EXPECT_EQ(connection_.Errors().size(), 1U) << "a success does not clear them";

    Connection closed;
    EXPECT_EQ(errorOf([&] { closed.Execute("SELECT 1"); }).Number(),
              data::number::ConnectionClosed);
    EXPECT_TRUE(closed.Errors().empty());

    EXPECT_EQ(sqlStateOf([&] { connection_.Open("DRIVER={No such driver}"); }), "01000");
    EXPECT_TRUE(connection_.IsOpen()) << "the open database stays when another cannot be opened";
    connection_.Execute("SELECT 1");
}

TEST_P(EngineTest, RollsBackUnlessCommitted) {
    {
        Transaction transaction(connection_);
        connection_.Execute("UPDATE PR SET PR_NAME = 'changed'");
        EXPECT_THROW(connection_.Execute("UPDATE NOWHERE SET X = 1"), data::Error);
    }
    EXPECT_EQ(cells(connection_, "SELECT COUNT(*) FROM PR WHERE PR_NAME = 'changed'"), "0|");
    {
        Transaction transaction(connection_);
        connection_.Execute("UPDATE PR SET PR_NAME = 'changed'");
        transaction.Commit();
    }
    EXPECT_EQ(cells(connection_, "SELECT COUNT(*) FROM PR WHERE PR_NAME = 'changed'"), "2|");
    {
        Connection other;
        other.Open(GetParam().connectionString(file()));
        other.BeginTrans();
        other.Execute("DELETE FROM PR");
    }
    EXPECT_EQ(cells(connection_, "SELECT COUNT(*) FROM PR"), "2|") << "closing rolls back too";
    EXPECT_EQ(errorOf([&] { connection_.CommitTrans(); }).Number(), -2147168242);
    connection_.BeginTrans();
    EXPECT_EQ(errorOf([&] { connection_.BeginTrans(); }).Number(), -2147168237);
    connection_.RollbackTrans();
    connection_.Execute("DELETE FROM PR");
    EXPECT_EQ(cells(connection_, "SELECT COUNT(*) FROM PR"), "0|") << "and each on its own again";
}

TEST_P(EngineTest, RunsOneStatementOrNone) {
    const std::string start = "UPDATE PR SET PR_NAME = 'x";
    for (const std::string& end :
         {std::string("'; DELETE FROM PR"), std::string("'; DROP TABLE PR;"),
          '\0' + std::string("' WHERE PR_CODE = 'A1'"),
          std::string("'\0' WHERE PR_CODE = 'A1'", 24), std::string("y's' WHERE PR_CODE = 'A1'"),
          std::string(" WHERE PR_CODE = 'A1'"), std::string("' WHERE PR_CODE = ?")}) {
        const std::string statement = start + end;
        EXPECT_THROW(connection_.Execute(statement), data::Error) << statement;
        EXPECT_THROW(connection_.query(statement), data::Error) << statement;
    }
    EXPECT_EQ(cells(connection_, "SELECT COUNT(*) FROM PR WHERE PR_NAME <> 'x'"), "2|");
    EXPECT_EQ(cells(connection_, "SELECT COUNT(*) FROM PR ; \r\n"), "2|");
}

TEST_P(EngineTest, KeepsTheOneColumnThatIsWanted) {
    data::Recordset rows =
        connection_.read(" SELECT PR_NAME, BAS_CODE, PR_CODE FROM PR ", "PR_CODE");
    ASSERT_EQ(rows.Fields().size(), 1U);
    rows.Find("PR_CODE = 'a2'"); // by the comparison of the column it comes from
    EXPECT_EQ(rows.Eof() ? "not found" : rows.Item(0).toText(), "A2");
    EXPECT_THROW(connection_.read(" SELECT PR_NAME FROM PR ", "PR_CODE"), data::Error);
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
    std::string bound, unbound;
    for (int n = 1; n <= 3000; ++n) {
        bound += std::to_string(n) + "|row " + std::to_string(n) + "|";
        unbound += std::to_string(n) + "|" + (n == 2 ? text : "Null") + "|";
    }
    EXPECT_TRUE(cells(connection_, "SELECT N, SHORT FROM LINES ORDER BY N") == bound);
    EXPECT_TRUE(cells(connection_, "SELECT N, LONGER FROM LINES ORDER BY N") == unbound);
    if (GetParam().connectionString == overOdbc) {
        // This driver lets texts be longer than their column says; half a text is no text.
        set("SHORT = '" + text + "'");
        EXPECT_EQ(sqlStateOf([&] { cells(connection_, "SELECT SHORT FROM LINES"); }), "01004");
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
    const std::vector<std::pair<std::string, std::string>> states{
        {"INSERT INTO PR (PR_CODE) VALUES ('a1')", "23000"},
        {"SELECT * FROM NOWHERE", "42S02"},
        {"SELECT MISSING FROM PR", "07002"},
        {"SELECT * FROM PR WHERE PR_CODE = ?", "07002"},
        {"UPDATE PR SET PR_QTY = 1,,,", "42000"},
        {" ; ", "42000"},
        {"UPDATE PR SET PR_NAME = 'x' -- ' WHERE PR_CODE = 'A1'", "42000"}};
    for (const auto& [statement, state] : states)
        EXPECT_EQ(sqlStateOf([&, sql = statement] { connection_.Execute(sql); }), state)
            << statement;
    EXPECT_EQ(errorOf([&] { connection_.Execute("DELETE FROM PR;;"); }).Description(),
              "Characters found after end of SQL statement.");
}

TEST_F(EmbeddedStoreTest, ComparesAsItsColumnsDo) {
    connection_.Open(embedded(file()));
    data::Recordset rows;
    rows =
        connection_.read("SELECT PR_CODE, BAS_CODE, PR_NAME, PR_CODE + PR_NAME AS COL0, COUNT(*),"
                         " (SELECT BAS_CODE FROM PR) FROM PR");
    std::vector<data::TextComparison> comparisons;
    for (const data::Field& field : rows.Fields())
        comparisons.push_back(field.comparison);
    comparisons.resize(4);
    EXPECT_THAT(comparisons,
                ElementsAre(data::TextComparison::NoCase, data::TextComparison::RTrim,
                            data::TextComparison::Binary, data::TextComparison::NoCase));
    EXPECT_EQ(rows.Fields()[4].Type, data::DataType::Integer);

    rows = connection_.read("SELECT PR_CODE + PR_NAME AS COL0 FROM PR");
    rows.Find(" COL0 = 'a1갈비탕 😀' ");
    EXPECT_FALSE(rows.Eof());
    rows = connection_.read("SELECT BAS_CODE FROM PR WHERE BAS_CODE = 'ZO01'");
    EXPECT_EQ(rows.RecordCount(), 1);
    rows.Find("BAS_CODE = 'ZO01'");
    EXPECT_FALSE(rows.Eof());
}

TEST_F(EmbeddedStoreTest, RefusesWhatIsNoStoreAndNeverMakesOne) {
    struct Case {
        std::string name, contents, complaint;
    };
    const auto access = [](const std::string& kind) {
        return std::string("\0\1\0\0", 4) + "Standard " + kind + " DB" + std::string(4096, '\0');
    };
    const std::string header("SQLite format 3\0", 16);
    for (const Case& each :
         {Case{"text.MDB", "this is no database at all", "is not a database"},
          Case{"short.MDB", "abc", "is not a database"}, Case{"empty.MDB", "", "is empty"},
          Case{"jet.MDB", access("Jet"), "no Access ODBC driver"},
          Case{"ace.MDB", access("ACE"), "no Access ODBC driver"},
          Case{"broken.MDB", header + std::string(4096, 'x'), "cannot be opened"}}) {
        const auto path = folder_ / each.name;
        writeFile(path, each.contents);
        const data::Error error = errorOf([&] { connection_.Open(embedded(path)); });
        EXPECT_THAT(error.Description(),
                    AllOf(HasSubstr(each.complaint), HasSubstr(files::textOf(path))));
        EXPECT_EQ(connection_.Errors().front().Description, error.Description());
        EXPECT_EQ(tests::readFile(path), each.contents);
    }
    const auto complaint = [&](const char* name) {
        return errorOf([&] { connection_.Open(embedded(folder_ / name)); }).Description();
    };
    EXPECT_THAT(complaint("none.MDB"), HasSubstr("does not exist"));
    EXPECT_FALSE(std::filesystem::exists(folder_ / "none.MDB"));
    std::filesystem::create_directory(folder_ / "folder.MDB");
    EXPECT_THAT(complaint("folder.MDB"), HasSubstr("is a folder"));
    EXPECT_FALSE(connection_.IsOpen());
}

TEST_F(EmbeddedStoreTest, FindsItsFileAsTheConnectionStringSays) {
    const std::filesystem::path folder = folder_ / "외식업";
    std::filesystem::create_directory(folder);
    createStore(folder / "food.MDB");
    connection_.Open(embedded(folder / "food.MDB"));
    connection_.Execute("DELETE FROM PR");
    connection_.Open("driver={MICROSOFT ACCESS DRIVER (*.MDB)};DefaultDir=/nowhere;Dbq=" +
                     files::textOf(file()));
    EXPECT_EQ(cells(connection_, "SELECT COUNT(*) FROM PR"), "2|") << "an absolute Dbq wins";
}

/// Waits as long as a test says.
struct Patient : WaitHandler {
    bool lockAwaited() override { return --lockCalls > 0; }
    bool statementRuns(std::chrono::milliseconds /*soFar*/) override {
        return --statementCalls > 0;
    }
    void waitOver() override { ++waitsOver; }
    int lockCalls = 0;
    int statementCalls = 1000;
    int waitsOver = 0;
};

TEST_F(EmbeddedStoreTest, WaitsForAnotherProgramsLockButNotForEver) {
    Patient patient;
    connection_.setWaitHandler(&patient);
    connection_.Open(embedded(file()));
    const SqliteDatabase other = openRaw(file());
    sqlite3_exec(other.get(), "BEGIN IMMEDIATE", nullptr, nullptr, nullptr);
    patient.lockCalls = 20;
    const data::Error error = errorOf([&] { connection_.BeginTrans(); });
    EXPECT_EQ(error.Description(), "database is locked");
    EXPECT_EQ(error.Number(), data::number::Unspecified);
    EXPECT_EQ(patient.lockCalls, 0) << "asked again and again, until it gave up";
    EXPECT_EQ(patient.waitsOver, 1);
    EXPECT_EQ(cells(connection_, "SELECT COUNT(*) FROM PR"), "2|") << "reading goes on";

    // A commit waits for readers, for a shorter time: it keeps new ones out.
    sqlite3_exec(other.get(), "ROLLBACK; BEGIN; SELECT * FROM PR", nullptr, nullptr, nullptr);
    patient.lockCalls = 100'000;
    const auto start = std::chrono::steady_clock::now();
    connection_.BeginTrans();
    connection_.Execute("DELETE FROM PR");
    EXPECT_EQ(errorOf([&] { connection_.CommitTrans(); }).Description(), "database is locked");
    const auto waited = std::chrono::steady_clock::now() - start;
    EXPECT_GT(waited, SqliteEngine::CommitPatience * 8 / 10);
    EXPECT_LT(waited, SqliteEngine::CommitPatience * 3);
    connection_.RollbackTrans();

    // A statement without an end.
    patient.statementCalls = 5;
    EXPECT_EQ(errorOf([&] {
                  connection_.Execute("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i FROM n) "
                                      "SELECT COUNT(*) FROM n");
              }).Description(),
              "interrupted");
    EXPECT_EQ(patient.statementCalls, 0);

    sqlite3_exec(other.get(), "ROLLBACK; BEGIN EXCLUSIVE", nullptr, nullptr, nullptr);
    Connection late;
    late.Open(embedded(file()));
    sqlite3_exec(other.get(), "ROLLBACK", nullptr, nullptr, nullptr);
    Transaction transaction(late);
    late.Execute("DELETE FROM PR");
    transaction.Commit();
}

TEST_F(EmbeddedStoreTest, OthersReadUntilALargeTransactionCommits) {
    connection_.Open(embedded(file()));
    const SqliteDatabase other = openRaw(file());
    Transaction transaction(connection_);
    // Several times what SQLite keeps in memory by itself.
    for (int i = 0; i < 10'000; ++i)
        connection_.Execute("INSERT INTO PR (PR_CODE,PR_NAME) VALUES ('" + std::to_string(i) +
                            "', '" + std::string(1000, 'x') + "')");
    EXPECT_EQ(sqlite3_exec(other.get(), "SELECT COUNT(*) FROM PR", nullptr, nullptr, nullptr),
              SQLITE_OK);
    transaction.Commit();
    EXPECT_EQ(cells(connection_, "SELECT COUNT(*) FROM PR"), "10002|");
}

TEST_F(EmbeddedStoreTest, ACommitIntoAFileThatIsNoLongerTheStoreIsAnError) {
    const std::filesystem::path aside = folder_ / "aside.MDB";
    const auto whileOpen = [&](const auto& change) {
        connection_.Open(embedded(file()));
        connection_.BeginTrans();
        connection_.Execute("DELETE FROM PR");
        change();
        const data::Error error = errorOf([&] { connection_.CommitTrans(); });
        return error.Description();
    };
    EXPECT_EQ(whileOpen([] {}), "no error");
    EXPECT_THAT(whileOpen([&] { std::filesystem::rename(file(), aside); }), HasSubstr("moved"));
    std::filesystem::copy_file(aside, file());
    EXPECT_TRUE(connection_.hasMoved()) << "another file of the same name";
    connection_.RollbackTrans();
    EXPECT_THAT(errorOf([&] { connection_.BeginTrans(); }).Description(), HasSubstr("replaced"));
}

} // namespace
} // namespace quillet::db
