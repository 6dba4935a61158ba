#include "headoffice/HeadOffice.h"

#include "db/Connection.h"
#include "db/Error.h"
#include "rds/Call.h"
#include "rds/DataSpace.h"

#include <gmock/gmock.h>

#include <clocale>
#include <filesystem>
#include <fstream>
#include <future>
#include <optional>
#include <random>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace quillet;
using ::testing::ContainsRegex;
using ::testing::HasSubstr;
using ::testing::Not;

class HeadOfficeTest : public ::testing::Test {
protected:
    HeadOfficeTest() {
        // The driver manager converts text by the locale for drivers without Unicode calls.
        std::setlocale(LC_CTYPE, "C.UTF-8");
        std::filesystem::create_directories(folder_);
        db_.Open(connection_);
        db_.Execute("CREATE TABLE KIND (KIND_CODE VARCHAR(10) PRIMARY KEY, NAME VARCHAR(400), "
                    "LVL INTEGER)");
        db_.Execute("INSERT INTO KIND VALUES ('A1', '한글 이름', 1)");
        db_.Execute("INSERT INTO KIND VALUES ('A2', NULL, NULL)");
        db_.Execute("INSERT INTO KIND VALUES ('A3', '', -7)");
        start({});
    }

    ~HeadOfficeTest() override {
        stop();
        db_ = db::Connection();
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }

    void start(headoffice::Options options) {
        stop();
        options.port = 0;
        options.portFile = folder_ / "port";
        office_.emplace(options, log_);
        thread_ = std::thread([this] { office_->run(); });
    }

    void stop() {
        if (!office_)
            return;
        office_->stop();
        thread_.join();
        office_.reset();
    }

    rds::RemoteObject remote(const std::string& progId) {
        std::string port;
        std::ifstream(folder_ / "port") >> port;
        return rds::DataSpace().CreateObject(progId, "http://127.0.0.1:" + port);
    }

    db::Recordset getsql(std::string sql) {
        rds::Variant information;
        std::string connection = connection_;
        return remote("quorin.data").Getsql(sql, 0, 1, information, connection);
    }

    bool putsql(std::vector<std::string> statements) {
        return remote("Quorin.Demon").PUTSQL(statements, errorText_, connection_);
    }

    std::string count(const std::string& from) {
        return getsql("SELECT COUNT(*) FROM " + from).Item(0).toText();
    }

    const std::filesystem::path folder_ =
        std::filesystem::temp_directory_path() /
        ("quillet-headoffice-" + std::to_string(std::random_device()()));
    std::string connection_ =
        "DRIVER={SQLite3};DATABASE=" + (folder_ / "chain.db").string() + ";PWD=mq5307;";
    std::string errorText_;
    db::Connection db_;
    std::ostringstream log_;
    std::optional<headoffice::HeadOffice> office_;
    std::thread thread_;
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
    EXPECT_EQ(rows.Item(2).toText(), "1");
    rows.MoveNext();
    EXPECT_TRUE(rows.Item(1).isNull());
    EXPECT_TRUE(rows.Item(2).isNull());
    rows.MoveNext();
    EXPECT_FALSE(rows.Item(1).isNull());
    EXPECT_EQ(rows.Item(1).toText(), "");
    EXPECT_EQ(rows.Item(2).toText(), "-7");

    stop();
    EXPECT_THAT(log_.str(),
                ContainsRegex("127.0.0.1:[0-9]+ quorin.data.Getsql 3 rows, [0-9]+ ms, [0-9]+ "
                              "bytes\n"));
}

TEST_F(HeadOfficeTest, PassesTheDatabasesErrorOn) {
    const std::string wrong = "SELECT NO_SUCH_COLUMN FROM KIND";
    std::string expected;
    try {
        db_.query(wrong);
    } catch (const db::Error& error) {
        expected = std::to_string(error.Number()) + ' ' + error.Description();
    }
    try {
        getsql(wrong);
        ADD_FAILURE();
    } catch (const db::Error& error) {
        EXPECT_EQ(std::to_string(error.Number()) + ' ' + error.Description(), expected);
    }
    connection_ = "DRIVER={No Such Driver};UID=me;PWD=mq5307";
    EXPECT_THROW(getsql("SELECT 1"), db::Error);
    stop();
    EXPECT_THAT(log_.str(), HasSubstr("NO_SUCH_COLUMN"));
    EXPECT_THAT(log_.str(), Not(HasSubstr("mq5307")));
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
    stop();
    EXPECT_THAT(log_.str(), HasSubstr("Quorin.Demon.PUTSQL 2 statements, "));
    EXPECT_THAT(log_.str(), HasSubstr("2 statements refused, error -2147"));
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
    const std::string server = "127.0.0.1:" + std::to_string(office_->port());
    const std::string body =
        rds::HttpClient().post(server, rds::callPath(call), rds::encodeCall(call));
    EXPECT_EQ(rds::decodeReply(body, 3).result, rds::Variant(true));
    EXPECT_EQ(count("KIND"), "2");
}

TEST_F(HeadOfficeTest, ReturnsArgumentsWhenAsked) {
    headoffice::Options options;
    options.returnArguments = true;
    options.queryObject = "other.name";
    start(options);
    EXPECT_FALSE(putsql({"", "INSERT INTO NO_SUCH_TABLE VALUES (1)"}));
    EXPECT_THAT(errorText_, HasSubstr("NO_SUCH_TABLE"));

    rds::Variant information;
    std::string sql = "SELECT 1";
    std::string connection = connection_;
    EXPECT_EQ(remote("other.name").Getsql(sql, 0, 1, information, connection).RecordCount(), 1);
    EXPECT_EQ(sql, "SELECT 1");
    EXPECT_EQ(connection, connection_);
    EXPECT_THROW(remote("quorin.data").Getsql(sql, 0, 1, information, connection), db::Error);
}

TEST_F(HeadOfficeTest, ServesSeveralCountersAtOnce) {
    db_.BeginTrans();
    for (int i = 0; i < 500; ++i)
        db_.Execute("INSERT INTO KIND VALUES ('N" + std::to_string(i) + "', '" +
                    std::string(200, 'x') + "', 3)");
    db_.CommitTrans();
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

} // namespace
