// What strangers may say to the server: statements, connection strings, and what an administrator
// may say on its command line.

#include "data/Error.h"
#include "headoffice/Options.h"
#include "headoffice/database/DatabaseAccess.h"
#include "headoffice/guards/QueryGuard.h"
#include "headoffice/guards/WriteGuard.h"
#include "tests/support/Errors.h"
#include "tests/support/TempFolder.h"

#include <gmock/gmock.h>

#include <fstream>
#include <string>

namespace {

using namespace quillet;
using headoffice::DatabaseAccess;
using headoffice::DatabaseName;
using ::testing::HasSubstr;

TEST(QueryGuard, LetsQueriesPassAndNothingElse) {
    for (const char* query :
         {" SELECT KD_ID, 'INTO; -- it''s' FROM KIND WHERE NAME = \"LOCK\"", "select 1;",
          "(SELECT 1) UNION (SELECT `INTO` FROM T)", "/* why */ SELECT 2 -- INTO OUTFILE",
          "# all\nWITH X AS (SELECT 1) SELECT * FROM X",
          "SELECT 'a\\'b', 3 - -2 FROM T WHERE A = '\\\\'", "SELECT LOCKED, NEXT_NO FROM T"})
        EXPECT_NO_THROW(headoffice::requireQuery(query)) << query;

    for (const char* statement :
         {"", ";", "()", "CREATE TABLE X (A INT)", "INSERT INTO KIND VALUES (1)", "SET @x = 1",
          "BEGIN NOT ATOMIC COMMIT; CREATE TABLE X (A INT); END", "COMMIT", "CALL p()",
          "SET STATEMENT max_statement_time = 0 FOR SELECT 1", "EXECUTE IMMEDIATE 'COMMIT'",
          "LOAD DATA LOCAL INFILE '/etc/passwd' INTO TABLE KIND", "ANALYZE DELETE FROM KIND",
          "SELECT 1; DROP TABLE KIND", "SELECT 1 INTO OUTFILE '/tmp/x'", "SELECT 1 INTO @x",
          "SELECT LOAD_FILE('/etc/passwd')", "SELECT * FROM KIND FOR UPDATE",
          "SELECT * FROM KIND LOCK IN SHARE MODE", "/*!50000 DROP TABLE KIND */",
          "SELECT 1 /*! INTO OUTFILE '/tmp/x' */", "SELECT 1 /*M! INTO @x */",
          "SELECT /*+ MAX_EXECUTION_TIME(0) */ 1", "SELECT --1 INTO @x",
          // Where a backslash is a plain character the text ends early.
          "SELECT '\\', 1 INTO OUTFILE '/tmp/x' -- '", "SELECT NEXT VALUE FOR S",
          "SELECT GET_LOCK('x', 9)"})
        EXPECT_EQ(tests::errorOf([&] { headoffice::requireQuery(statement); }).Number(),
                  data::number::CommandText)
            << statement;
}

TEST(WriteGuard, LetsTheVersionReportPassAndNothingElse) {
    const headoffice::WriteGuard guard({"Shelf"});
    const std::string report = " UPDATE POS SET RECEIVE_VER = '1.0.0' , RECEIVE_VER_SDATE = Now() "
                               "WHERE POS_ID = 'it''s' AND  RCT_CODE = '1000'";
    const headoffice::UpdateStatement update = guard.require(report);
    EXPECT_EQ(update.table, "POS");
    EXPECT_EQ(update.values.front().second, "1.0.0");
    EXPECT_EQ(update.keys.front().second + update.keys.back().second, "it's1000");
    EXPECT_NO_THROW(guard.require("update `shelf` set a=-1.5,b=null where c='x';"));

    for (const char* statement :
         {"", "DELETE FROM POS", "UPDATE POS SET RECEIVE_VER = '1'",
          "UPDATE POS SET RCT_CODE = '1', RECEIVE_VER_SDATE = Now() WHERE POS_ID = '1' AND "
          "RCT_CODE = '1'",
          "UPDATE POS SET RECEIVE_VER = '1', RECEIVE_VER_SDATE = Now() WHERE POS_ID = '1'",
          "UPDATE POS SET RECEIVE_VER = '1', RECEIVE_VER_SDATE = Now() WHERE POS_ID = '1' AND "
          "RCT_CODE = '1' OR 1 = 1",
          "UPDATE POS SET RECEIVE_VER = (SELECT User()), RECEIVE_VER_SDATE = Now() WHERE POS_ID = "
          "'1' AND RCT_CODE = '1'",
          "UPDATE CT SET A = '1' WHERE B = '2'", "UPDATE SHELF SET A = 1",
          "UPDATE other.SHELF SET A = 1 WHERE B = '1'", "UPDATE SHELF SET A = 1 WHERE B = 0",
          "UPDATE SHELF SET A = B WHERE C = '1'", "UPDATE SHELF SET A = SLEEP(9) WHERE C = '1'",
          "UPDATE SHELF SET A = '\\' WHERE C = ' OR 1 -- '",
          "UPDATE SHELF SET A = 'x' 'y' WHERE C = '1'", "UPDATE SHELF SET A = 'x' WHERE C = 'open",
          "UPDATE SHELF SET A = 1 /*! , B = 2 */ WHERE C = '1'",
          "UPDATE SHELF SET A = 1 WHERE C = '1'; DROP TABLE POS"})
        EXPECT_EQ(tests::errorOf([&] { guard.require(statement); }).Number(),
                  data::number::CommandText)
            << statement;
}

TEST(DatabaseAccess, TakesNothingFromAConnectionStringButWhatItKnows) {
    const std::string driver = "MySQL ODBC 3.51 Driver";
    const DatabaseAccess access(
        {DatabaseName::parse("db.example/chain"), DatabaseName::parse("[::1]:3307/chain")}, driver);
    const auto login = access.loginOf("driver={" + driver +
                                      "};SERVER=DB.example;DATABASE=chain;UID=u;PWD=p q;"
                                      "OPTION=67125250;CHARSET=utf8;");
    EXPECT_EQ(login.database.text(), "db.example:3306/chain");
    EXPECT_EQ(login.user + login.password, "up q");
    EXPECT_EQ(login.option, 16386U) << "several statements in one text are no option";
    EXPECT_EQ(access.loginOf("SERVER=[::1];PORT=3307;DATABASE=chain").database.port, 3307);

    for (const std::string part : {"DRIVER=/tmp/x.so",
                                   "DRIVER={SQLite3}",
                                   "DRIVER={Microsoft Access Driver (*.mdb)}",
                                   "DSN=chain",
                                   "FILEDSN=/etc/passwd",
                                   "SAVEFILE=/tmp/x",
                                   "INITSTMT=DROP TABLE KIND",
                                   "PLUGIN_DIR=/tmp",
                                   "SSLKEY=/etc/x",
                                   "SOCKET=/run/x",
                                   "DBQ=food.MDB",
                                   "nonsense",
                                   "SERVER=other",
                                   "SERVER=db.example:3307",
                                   "SERVER=",
                                   "PORT=3307",
                                   "PORT=x",
                                   "PORT=70000",
                                   "DATABASE=mysql",
                                   "DATABASE=CHAIN",
                                   "DATABASE=",
                                   "OPTION=-1"})
        EXPECT_THROW(access.loginOf(part + ";SERVER=db.example;DATABASE=chain"), data::Error)
            << part;

    const DatabaseAccess unlisted({}, driver);
    EXPECT_NO_THROW(unlisted.loginOf("SERVER=127.0.0.1;PORT=9;DATABASE=any"));
    EXPECT_THROW(unlisted.loginOf("SERVER=db.example;DATABASE=any"), data::Error);
}

TEST(Options, ReadsTheCommandLineAndTheFile) {
    const tests::TempFolder folder;
    const std::string file = (folder / "headoffice.conf").string();
    std::ofstream(file) << "# counters\nlisten = \"0.0.0.0:80\"\nallow = [\"10.0.0.0/8\", "
                           "\"::1/128\"]\ndatabase = [\"db.example/chain\"]\ndrain = 12\n"
                           "return-arguments = true\n";
    const auto options = headoffice::parseOptions(
        {"--config", file, "--listen", "[::1]:0", "--object", "a.b", "--port-file", "p"});
    EXPECT_EQ(options.listen.text(), "[::1]:0");
    EXPECT_EQ(options.allow, "10.0.0.0/8 ::1/128 ");
    EXPECT_EQ(options.databases.front().text(), "db.example:3306/chain");
    EXPECT_EQ(options.drain.count(), 12);
    EXPECT_TRUE(options.returnArguments);
    EXPECT_EQ(options.queryObject, "a.b");
    EXPECT_THAT(headoffice::parseOptions({"--help"}).information, HasSubstr("--allow"));

    std::ofstream(folder / "wrong.conf") << "allowed = \"10.0.0.0/8\"\n";
    const std::string open = "0.0.0.0:80";
    for (const std::vector<std::string>& wrong : std::vector<std::vector<std::string>>{
             {"--listen"},
             {"--listen", "8080"},
             {"--listen", ":8080"},
             {"--listen", "host:65536"},
             {"--listen", "host:x"},
             {"--listen", "::1:80"},
             {"--listen", open},
             {"--listen", open, "--allow", "10.0.0.0/8"},
             {"--listen", open, "--database", "h/n"},
             {"--allow", "10.0.0.0/33"},
             {"--allow", ""},
             {"--database", "name"},
             {"--database", "h:0/n"},
             {"--database", "h/n/m"},
             {"--admin", open},
             {"--admin", "x"},
             {"--object", ""},
             {"--workers", "0"},
             {"--drain", "soon"},
             {"--memory", "99999999999999999999"},
             {"--memory", "1"}, // less than one request may take
             {"--writable", "a;b"},
             {"--password-file", (folder / "none").string()},
             {"--user", "u", "--password-file", (folder / "none").string()},
             {"--return-arguments=perhaps"},
             {"--check"},
             {"--config", (folder / "wrong.conf").string()},
             {"--config", (folder / "none.conf").string()},
             {"--wrong"},
             {"stray"}}) {
        const data::Error error = tests::errorOf([&] { headoffice::parseOptions(wrong); });
        EXPECT_EQ(error.Number(), data::number::InvalidArgument) << testing::PrintToString(wrong);
        EXPECT_EQ(error.Description().find('\n'), std::string::npos) << error.Description();
    }
}

} // namespace
