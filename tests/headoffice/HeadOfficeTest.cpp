#include "headoffice/HeadOffice.h"

#include "db/Connection.h"
#include "headoffice/RowByRow.h"
#include "rds/Call.h"
#include "rds/DataSpace.h"
#include "tests/support/Errors.h"
#include "tests/support/RunningServer.h"
#include "tests/support/TempFolder.h"

#include <gmock/gmock.h>

#include <clocale>
#include <future>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace {

using namespace quillet;
using ::testing::AllOf;
using ::testing::ContainsRegex;
using ::testing::HasSubstr;
using ::testing::Not;

class HeadOfficeTest : public ::testing::Test {
protected:
    HeadOfficeTest() {
        // The driver manager converts text by the locale for drivers without Unicode calls.
        std::setlocale(LC_CTYPE, "C.UTF-8");
        db_.Open(connection_);
        db_.Execute("CREATE TABLE KIND (KIND_CODE VARCHAR(10) PRIMARY KEY, NAME VARCHAR(400), "
                    "LVL INTEGER)");
        db_.Execute("INSERT INTO KIND VALUES ('A1', '한글 이름', 1), ('A2', NULL, NULL), "
                    "('A3', '', -7)");
        start({});
    }

    void start(headoffice::Options options) {
        options.port = 0;
        options.portFile = folder_ / "port";
        office_.reset();
        office_ = std::make_unique<tests::Running<headoffice::HeadOffice>>(options, log_);
    }

    /// What the log says once the server has stopped.
    std::string log() {
        office_.reset();
        return log_.str();
    }

    db::Recordset getsql(std::string sql, const std::string& progId = "quorin.data") {
        rds::Variant information;
        std::string connection = connection_;
        return remote(progId).Getsql(sql, 0, 1, information, connection);
    }

    bool putsql(std::vector<std::string> statements) {
        return remote("Quorin.Demon").PUTSQL(statements, errorText_, connection_);
    }

    std::string count(const std::string& from) {
        return getsql("SELECT COUNT(*) FROM " + from).Item(0).toText();
    }

    const tests::TempFolder folder_;
    std::string connection_ =
        "DRIVER={SQLite3};DATABASE=" + (folder_ / "chain.db").string() + ";PWD=mq5307;";
    std::string errorText_;
    db::Connection db_;
    std::ostringstream log_;
    std::unique_ptr<tests::Running<headoffice::HeadOffice>> office_;

private:
    rds::RemoteObject remote(const std::string& progId) const {
        const std::string port = tests::readFile(folder_ / "port");
        return rds::DataSpace().CreateObject(
            progId, "http://127.0.0.1:" + port.substr(0, port.find_first_of("\r\n")));
    }
};

TEST_F(HeadOfficeTest, ReturnsTheRowsOfAQuery) {
    const db::Recordset empty = getsql("SELECT * FROM KIND WHERE LVL = 99");
    EXPECT_EQ(empty.RecordCount(), 0);
    EXPECT_TRUE(empty.Eof());
    EXPECT_EQ(empty.Fields().size(), 3U);

    db::Recordset rows = getsql("SELECT KIND_CODE, NAME, LVL FROM KIND ORDER BY KIND_CODE");
    ASSERT_EQ(rows.RecordCount(), 3);
    EXPECT_EQ(rows.Fields()[1].Name, "NAME");
    EXPECT_EQ(rows.Item(1).toText(), "한글 이름");
    rows.MoveNext();
    EXPECT_TRUE(rows.Item(1).isNull());
    rows.MoveNext();
    EXPECT_FALSE(rows.Item(1).isNull());
    EXPECT_EQ(rows.Item(1).toText() + rows.Item(2).toText(), "-7");
    EXPECT_THAT(log(), ContainsRegex("127.0.0.1:[0-9]+ quorin.data.Getsql 3 rows, [0-9]+ ms, "
                                     "[0-9]+ bytes\n"));
}

TEST_F(HeadOfficeTest, PassesTheDatabasesErrorOn) {
    const std::string wrong = "SELECT NO_SUCH_COLUMN FROM KIND";
    const std::string expected = tests::errorTextOf([&] { db_.query(wrong); });
    EXPECT_THAT(expected, HasSubstr("NO_SUCH_COLUMN"));
    EXPECT_EQ(tests::errorTextOf([&] { getsql(wrong); }), expected);
    connection_ = "DRIVER={No Such Driver};UID=me;PWD=mq5307";
    EXPECT_THROW(getsql("SELECT 1"), db::Error);
    EXPECT_THAT(log(), AllOf(HasSubstr("NO_SUCH_COLUMN"), Not(HasSubstr("mq5307"))));
}

TEST_F(HeadOfficeTest, RunsStatementsAllOrNone) {
    EXPECT_TRUE(putsql({"not run", "UPDATE KIND SET LVL = 5 WHERE KIND_CODE = 'A1'", " ",
                        "INSERT INTO KIND VALUES ('새', '이름', 2)"}));
    EXPECT_EQ(count("KIND WHERE LVL = 5"), "1");
    EXPECT_EQ(count("KIND"), "4");

    EXPECT_FALSE(putsql({"", "DELETE FROM KIND", "INSERT INTO NO_SUCH_TABLE VALUES (1)"}));
    EXPECT_EQ(count("KIND"), "4");
    EXPECT_FALSE(putsql({"", "INSERT INTO KIND VALUES ('A1', '', 1)"}));
    EXPECT_TRUE(putsql({""}));
    EXPECT_EQ(errorText_, ""); // by default no argument comes back
    EXPECT_THAT(log(), AllOf(HasSubstr("Quorin.Demon.PUTSQL 2 statements, "),
                             HasSubstr("2 statements refused, error -2147")));
}

TEST_F(HeadOfficeTest, TakesAnyArrayOfStatements) {
    rds::VariantArray array;
    array.dimensions = {{2, 1}}; // no element 0
    array.elements = {rds::Variant::string("DELETE FROM KIND WHERE KIND_CODE = 'A1'"),
                      rds::Variant(rds::Empty{})};
    rds::Call call{"quorin.demon",
                   "putsql",
                   {array, rds::Empty{}, rds::Variant::string(connection_)},
                   rds::newBoundary()};
    const std::string body =
        rds::HttpClient().post(office_->address(), rds::callPath(call), rds::encodeCall(call)).body;
    EXPECT_EQ(rds::decodeReply(body, 3).result, rds::Variant(true));
    EXPECT_EQ(count("KIND"), "2");

    array.isNull = true;
    call.arguments[0] = array;
    const std::string refusal =
        rds::HttpClient().post(office_->address(), rds::callPath(call), rds::encodeCall(call)).body;
    EXPECT_EQ(tests::errorOf([&] { rds::decodeReply(refusal, 3); }).Number(), 13)
        << "nothing was handed over, so nothing has succeeded";
}

TEST_F(HeadOfficeTest, ReturnsArgumentsWhenAsked) {
    headoffice::Options options;
    options.returnArguments = true;
    options.queryObject = "other.name";
    start(options);
    EXPECT_FALSE(putsql({"", "INSERT INTO NO_SUCH_TABLE VALUES (1)"}));
    EXPECT_THAT(errorText_, HasSubstr("NO_SUCH_TABLE"));

    EXPECT_EQ(getsql("SELECT 1", "other.name").RecordCount(), 1);
    EXPECT_THROW(getsql("SELECT 1"), db::Error);
}

TEST_F(HeadOfficeTest, ServesSeveralCountersAtOnce) {
    db_.Execute("INSERT INTO KIND WITH RECURSIVE S(N) AS (SELECT 1 UNION ALL SELECT N + 1 FROM S "
                "WHERE N < 500) SELECT 'N' || N, HEX(ZEROBLOB(100)), 3 FROM S");
    std::vector<std::future<int>> counters;
    for (int counter = 0; counter < 8; ++counter)
        counters.push_back(std::async(std::launch::async, [this] {
            int rows = 0;
            for (int call = 0; call < 10; ++call)
                rows += getsql("SELECT * FROM KIND WHERE LVL = 3").RecordCount();
            return rows;
        }));
    for (auto& counter : counters)
        EXPECT_EQ(counter.get(), 5000);
}

TEST(RowByRow, AsksTheDriversThatCanForIt) {
    const auto reading = [](const char* text) { return headoffice::readingRowByRow(text); };
    EXPECT_EQ(reading("DRIVER={MySQL ODBC 3.51 Driver};SERVER=a;PWD={x;OPTION=1};OPTION=16386"),
              "OPTION=3162114;DRIVER={MySQL ODBC 3.51 Driver};SERVER=a;PWD={x;OPTION=1};");
    EXPECT_EQ(reading("Driver=MariaDB;Pwd={open"), "OPTION=3145728;Driver=MariaDB;Pwd={open");
    for (const char* untouched : {"DRIVER={SQLite3};OPTION=1", "DSN=chain;OPTION=1", "",
                                  "DRIVER={MySQL};OPTION=many", "DRIVER={MySQL};OPTION=-1"})
        EXPECT_EQ(reading(untouched), untouched);
}

} // namespace
