#include "db/sqlite/AccessDialect.h"

#include "data/Error.h"
#include "db/sqlite/AccessFunctions.h"
#include "db/sqlite/SqliteHandle.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace quillet::db {
namespace {

class AccessDialect : public testing::Test {
protected:
    AccessDialect() {
        sqlite3* opened = nullptr;
        sqlite3_open(":memory:", &opened);
        database_.reset(opened);
        addAccessFunctions(opened);
        sqlite3_exec(opened,
                     "CREATE TABLE T (A TEXT, B TEXT, N INTEGER, [a+b] TEXT);"
                     "INSERT INTO T VALUES ('x', 'y', 7, 'z'), (NULL, 'w', NULL, 'z')",
                     nullptr, nullptr, nullptr);
    }

    /// The first column of all rows, joined by "|"; or the error.
    std::string run(const std::string& statement) {
        try {
            std::string buffer;
            const std::string& sql = translateAccessSql(statement, buffer);
            sqlite3_stmt* prepared = nullptr;
            if (sqlite3_prepare_v2(database_.get(), sql.c_str(), -1, &prepared, nullptr) !=
                SQLITE_OK)
                throw sqliteError(database_.get());
            const SqliteStatement owner(prepared);
            std::string result;
            while (stepSqlite(prepared)) {
                const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(prepared, 0));
                result += (result.empty() ? "" : "|") + std::string(text ? text : "Null");
            }
            return result;
        } catch (const data::Error& error) {
            return error.providerRecords().front().SqlState + " " + error.Description();
        }
    }

    SqliteDatabase database_;
};

TEST_F(AccessDialect, PlusBindsAsItShouldWhereverItStands) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"'a' + 'b'", "ab"},
        {"'a'+'b' + 'c'", "abc"},
        {"1 + 2 * 3 - 4", "3"},
        {"10 - 2 + 3", "11"},
        {"10 - (2 + 3)", "5"},
        {"2 * (3 + 4) + 1", "15"},
        {"1 + 2 = 3 AND 'a' + 'b' = 'ab'", "1"},
        {"-1 + +2", "1"},
        {"3 - -2", "5"},
        {"1e+2 + 1", "101.0"},
        {"5 + 2.5", "7.5"},
        {"9223372036854775807 + 1", "9.22337203685478e+18"},
        {"'1' + 2", "3"},
        {"'a' + NULL", "Null"},
        {"1 + NULL + 'x'", "Null"},
        {"'it''s' + ' + ' + \"a \"\"q\"\" isn't\"", "it's + a \"q\" isn't"},
        {"IIF('a' + 'b' = 'ab', 1 + 1, 0) + 1", "3"},
        {"CASE WHEN 1 + 1 = 2 THEN 'y' + 'es' ELSE 'n' + 'o' END + '!'", "yes!"},
        {"CASE 1 + 1 WHEN 2 THEN CASE WHEN 1 THEN 'in' + 'ner' END END", "inner"},
        {"(SELECT MAX(N) + 1 FROM T) + 1", "9"},
        {"'a' IN ('b', 'a' + '') AND 5 BETWEEN 2 + 2 AND 3 + 3", "1"},
        {"'n' & 1 + 2 & NULL & 'z'", "n3z"},
        {"UPPER('a' + 'b') + LOWER('C')", "ABc"},
    };
    for (const auto& [expression, expected] : cases)
        EXPECT_EQ(run("SELECT " + expression), expected) << expression;
    EXPECT_EQ(run("SELECT 'a' + 1").substr(0, 5), "22018");
}

TEST_F(AccessDialect, TranslatesWholeStatements) {
    EXPECT_EQ(run(" SELECT A + B AS COL0 FROM T "), "xy|Null");
    EXPECT_EQ(run("SELECT T.A+T.[a+b]+T.`a+b` FROM T WHERE A + B = 'x' + 'y' ORDER BY A + B"),
              "xzz");
    EXPECT_EQ(run("INSERT INTO T (A,N) SELECT '새 ' + '것',IIF(COUNT(*) = 0,1,MAX(N) + 1) FROM T"),
              "");
    EXPECT_EQ(run("UPDATE T SET N = N + 1, B = B + '!' WHERE A = '새 것' OR A = 'x'"), "");
    EXPECT_EQ(run("SELECT A + '=' & N FROM T WHERE N > 0 ORDER BY -N + 0"), "새 것=9|x=8");
    EXPECT_EQ(run("SELECT COUNT(*) + 1, T.* FROM T HAVING COUNT(*) + 1 > 0"), "4");
}

TEST_F(AccessDialect, LeavesOtherStatementsAloneWithoutCopying) {
    std::string buffer = "untouched";
    for (const std::string statement :
         {" UPDATE T SET A = 'a + b -- c /* d */ \"e' WHERE B = 'it''s' AND [a+b] = 'x' ",
          "INSERT INTO T (A, N) VALUES ('', -5)", "ALTER TABLE PRC ADD COLUMN PRC_RCV TEXT(1) ",
          "SELECT N - 1, N / 2, N * 3 FROM T", ""}) {
        EXPECT_EQ(&translateAccessSql(statement, buffer), &statement) << statement;
    }
    EXPECT_EQ(buffer, "untouched");
}

TEST_F(AccessDialect, RefusesWhatCouldHideTheRestOfAStatement) {
    const std::string start = "UPDATE T SET A = ";
    for (const std::string& rest :
         {std::string("'x' -- ' WHERE N = 1"), std::string("'x' /* ' WHERE N = 1"),
          std::string("'x' WHERE N = 1 + 1 --"), std::string("'it's' WHERE N = 1"),
          std::string("'x WHERE N = 1"), std::string("\"x WHERE N = 1"),
          std::string("[x WHERE N = 1"), std::string("'x'\0' WHERE N = 1", 17),
          std::string("'x") + '\0' + "y' WHERE N = 1", std::string("1 + WHERE N = 1")}) {
        EXPECT_EQ(run(start + rest).substr(0, 5), "42000") << rest;
    }
    EXPECT_EQ(run("SELECT A FROM T"), "x|Null");
}

TEST_F(AccessDialect, SurvivesDeepAndLongExpressions) {
    EXPECT_EQ(run("SELECT " + std::string(100000, '(') + "1 + 1").substr(0, 5), "42000");
    EXPECT_EQ(run("SELECT " + std::string(50, '(') + "1 + 1" + std::string(50, ')')), "2");
    std::string chain = "SELECT 0";
    for (int i = 0; i < 20; ++i)
        chain += " + 1";
    EXPECT_EQ(run(chain), "20");
}

} // namespace
} // namespace quillet::db
