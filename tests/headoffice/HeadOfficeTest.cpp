// Both objects over the wire, before the real database.

#include "rds/Call.h"
#include "rds/DataSpace.h"
#include "rds/http/HttpClient.h"
#include "tests/support/Errors.h"
#include "tests/support/ScriptedServer.h"
#include "tests/support/TempFolder.h"
#include "tests/support/TestHeadOffice.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <gmock/gmock.h>

#include <future>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace quillet;
using ::testing::AllOf;
using ::testing::ContainsRegex;
using ::testing::HasSubstr;
using ::testing::Not;
using tests::TestHeadOffice;

class HeadOfficeTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (!TestHeadOffice::isAvailable())
            GTEST_SKIP() << "no head office database (scripts/test starts one)";
        start({});
    }

    void start(const headoffice::Options& options) {
        office_ = std::make_unique<TestHeadOffice>(options);
        connection_ = office_->connectionString();
        office_->sql("CREATE TABLE SHELF (CODE VARCHAR(10) PRIMARY KEY, NAME VARCHAR(400), "
                     "LVL INTEGER)");
        office_->sql("INSERT INTO SHELF VALUES ('A1', '한글 이름', 1), ('A2', NULL, NULL), "
                     "('A3', '', -7)");
        office_->sql("INSERT INTO POS (RCT_CODE, POS_ID) VALUES ('1000', '01')");
    }

    data::Recordset getsql(std::string sql, const std::string& progId = "quorin.data") {
        rds::Variant information;
        std::string connection = connection_;
        return remote(progId).Getsql(sql, 0, 1, information, connection);
    }

    std::string refusal(const std::string& sql) {
        return tests::errorTextOf([&] { getsql(sql); });
    }

    bool putsql(std::vector<std::string> statements) {
        return remote("Quorin.Demon").PUTSQL(statements, errorText_, connection_);
    }

    static std::string report(const std::string& version) {
        return " UPDATE POS SET RECEIVE_VER = '" + version +
               "' , RECEIVE_VER_SDATE = Now() "
               "WHERE POS_ID = '01' AND  RCT_CODE = '1000'";
    }

    std::string reported() { return office_->value("SELECT RECEIVE_VER FROM POS"); }

    rds::RemoteObject remote(const std::string& progId) const {
        return rds::DataSpace().CreateObject(progId, "http://" + office_->address());
    }

    std::unique_ptr<TestHeadOffice> office_;
    std::string connection_;
    std::string errorText_;
};

TEST_F(HeadOfficeTest, ReturnsTheRowsOfAQuery) {
    const data::Recordset empty = getsql("SELECT * FROM SHELF WHERE LVL = 99");
    EXPECT_EQ(empty.RecordCount(), 0);
    EXPECT_EQ(empty.Fields().size(), 3U);

    data::Recordset rows = getsql("SELECT CODE, NAME, LVL FROM SHELF ORDER BY CODE");
    ASSERT_EQ(rows.RecordCount(), 3);
    EXPECT_EQ(rows.Fields()[1].Name, "NAME");
    EXPECT_EQ(rows.Item(1).toText(), "한글 이름");
    rows.MoveNext();
    EXPECT_TRUE(rows.Item(1).isNull());
    rows.MoveNext();
    EXPECT_FALSE(rows.Item(1).isNull());
    EXPECT_EQ(rows.Item(1).toText() + rows.Item(2).toText(), "-7");
    EXPECT_THAT(office_->log(), ContainsRegex("127.0.0.1:[0-9]+ quorin.data.Getsql 3 rows, "
                                              "[0-9]+ ms, [0-9]+ bytes\n"));
}

TEST_F(HeadOfficeTest, PassesTheDatabasesErrorOnAndNoSecret) {
    EXPECT_THAT(refusal("SELECT NO_SUCH_COLUMN FROM SHELF"),
                AllOf(HasSubstr("-2147"), HasSubstr("NO_SUCH_COLUMN")));
    const std::string allowed = connection_;
    connection_ += ";PWD=guessed-7";
    connection_.replace(connection_.find("PWD=mq5307"), 10, "PWD=wrong-5");
    EXPECT_THAT(refusal("SELECT 1"), Not(HasSubstr("127.0.0.1")));
    EXPECT_THAT(office_->log(), AllOf(HasSubstr("NO_SUCH_COLUMN"), Not(HasSubstr("mq5307")),
                                      Not(HasSubstr("wrong-5")), Not(HasSubstr("guessed"))));
}

TEST_F(HeadOfficeTest, OpensNothingButItsDatabases) {
    const tests::TempFolder folder;
    boost::asio::io_context context;
    boost::asio::ip::tcp::acceptor elsewhere(context,
                                             {boost::asio::ip::make_address_v4("127.0.0.2"), 0});
    elsewhere.non_blocking(true);
    const std::string port = std::to_string(elsewhere.local_endpoint().port());
    const std::string file = (folder / "made.db").string();
    const std::string own = connection_;
    for (const std::string& connection :
         {"DRIVER={SQLite3};Database=" + file, "DRIVER={SQLite3};Database=" + file + ";" + own,
          "DRIVER={Microsoft Access Driver (*.mdb)};Dbq=made.db;DefaultDir=" +
              folder.path().string(),
          "DRIVER=" + file + ".so;" + own, own + ";FILEDSN=" + file, own + ";SAVEFILE=" + file,
          own + ";INITSTMT=CREATE TABLE MADE (A INT)",
          "SERVER=127.0.0.2;PORT=" + port + ";DATABASE=chain;UID=u;PWD=p",
          "DRIVER={MySQL ODBC 3.51 Driver};SERVER=127.0.0.2;PORT=" + port + ";DATABASE=chain"}) {
        connection_ = connection;
        EXPECT_THAT(refusal("SELECT 1"), AllOf(HasSubstr("-2147467259"), Not(HasSubstr("lib"))))
            << connection;
        EXPECT_FALSE(putsql({"", report("9")})) << connection;
    }
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
    boost::system::error_code error;
    elsewhere.accept(error);
    EXPECT_EQ(error, boost::asio::error::would_block) << "somebody was probed";
}

TEST_F(HeadOfficeTest, ReadsWithGetsqlAndWritesNothing) {
    const tests::TempFolder folder;
    for (const std::string statement :
         {"CREATE TABLE MADE (A INT)", "DELETE FROM SHELF", "UPDATE SHELF SET LVL = 99",
          "BEGIN NOT ATOMIC COMMIT; CREATE TABLE MADE (A INT); END",
          "CREATE TEMPORARY TABLE MADE (A INT)", "SET GLOBAL max_connections = 1",
          "LOAD DATA LOCAL INFILE '/etc/hostname' INTO TABLE SHELF", "EXECUTE IMMEDIATE 'COMMIT'"})
        EXPECT_THAT(refusal(statement), HasSubstr("SELECT")) << statement;
    // What passes for a query meets a transaction that cannot write.
    office_->sql("CREATE FUNCTION EMPTIED() RETURNS INT BEGIN DELETE FROM SHELF; RETURN 1; END");
    EXPECT_THAT(refusal("SELECT EMPTIED()"), HasSubstr("READ ONLY"));
    EXPECT_EQ(office_->value("SELECT COUNT(*), SUM(LVL) FROM SHELF"), "3");
    EXPECT_EQ(office_->value("SELECT COUNT(*) FROM information_schema.TABLES WHERE TABLE_NAME = "
                             "'MADE' AND TABLE_SCHEMA = '" +
                             office_->databaseName() + "'"),
              "0");
}

TEST_F(HeadOfficeTest, WritesWhatCountersWriteAllOrNone) {
    EXPECT_TRUE(putsql({"not run", report("1.0.0"), " "}));
    EXPECT_EQ(reported(), "1.0.0");
    EXPECT_TRUE(putsql({""}));
    EXPECT_FALSE(putsql({"", report("2.0.0"), "DELETE FROM SHELF"}));
    EXPECT_FALSE(putsql({"", report("3.0.0"), report(std::string(21, 'x') + "'")}));
    EXPECT_FALSE(putsql({"", "INSERT INTO POS VALUES ('A1', '', '', NULL)"}));
    EXPECT_FALSE(putsql({"", "UPDATE SHELF SET LVL = 5 WHERE CODE = 'A1'"}));
    EXPECT_EQ(reported(), "1.0.0");
    EXPECT_EQ(errorText_, ""); // by default no argument comes back
    EXPECT_THAT(office_->log(), AllOf(HasSubstr("Quorin.Demon.PUTSQL 1 statement, "),
                                      HasSubstr("2 statements refused, "), HasSubstr("-2147")));

    headoffice::Options options;
    options.writable = {"SHELF"};
    options.returnArguments = true;
    options.queryObject = "other.name";
    start(options);
    EXPECT_FALSE(putsql({"", "UPDATE SHELF SET LVL = 5 WHERE CODE = 'A1'",
                         "UPDATE SHELF SET NO_COLUMN = 5 WHERE CODE = 'A1'"}));
    EXPECT_THAT(errorText_, HasSubstr("NO_COLUMN"));
    EXPECT_EQ(office_->value("SELECT LVL FROM SHELF WHERE CODE = 'A1'"), "1");
    EXPECT_TRUE(putsql({"", "UPDATE SHELF SET LVL = 5 WHERE CODE = 'A1'"}));
    EXPECT_EQ(getsql("SELECT LVL FROM SHELF WHERE CODE = 'A1'", "other.name").Item(0).toText(),
              "5");
    EXPECT_THROW(getsql("SELECT 1"), data::Error);
}

TEST_F(HeadOfficeTest, TakesAnyArrayOfStatements) {
    rds::VariantArray array;
    array.dimensions = {{2, 1}}; // no element 0
    array.elements = {rds::Variant::string(report("4.0.0")), rds::Variant(rds::Empty{})};
    rds::Call call{"quorin.demon",
                   "putsql",
                   {array, rds::Empty{}, rds::Variant::string(connection_)},
                   rds::newBoundary()};
    const auto post = [&] {
        return rds::HttpClient()
            .post(office_->address(), rds::callPath(call), rds::encodeCall(call))
            .body;
    };
    EXPECT_EQ(rds::decodeReply(post(), 3).result, rds::Variant(true));
    EXPECT_EQ(reported(), "4.0.0");

    array.isNull = true;
    call.arguments[0] = array;
    EXPECT_EQ(tests::errorOf([&] { rds::decodeReply(post(), 3); }).Number(), 13)
        << "nothing was handed over, so nothing has succeeded";
}

TEST_F(HeadOfficeTest, LeavesNothingOfACallerToTheNext) {
    EXPECT_EQ(getsql("SELECT @mine := 'secret' , CONNECTION_ID()").Item(0).toText(), "secret");
    const std::string first = getsql("SELECT CONNECTION_ID()").Item(0).toText();
    data::Recordset next = getsql("SELECT CONNECTION_ID(), @mine, @@in_transaction");
    EXPECT_EQ(next.Item(0).toText(), first) << "sessions are to be lent again";
    EXPECT_TRUE(next.Item(1).isNull());
    office_->sql("KILL " + first);
    EXPECT_NE(getsql("SELECT CONNECTION_ID()").Item(0).toText(), first)
        << "a session that the database has closed is nobody's failure";
    // Another password is another session, however idle this one is.
    connection_.replace(connection_.find("PWD=mq5307"), 10, "PWD=wrong-5");
    EXPECT_THROW(getsql("SELECT 1"), data::Error);
}

TEST_F(HeadOfficeTest, EndsQueriesThatNobodyWaitsForOrThatTakeTooLong) {
    using namespace std::chrono_literals;
    const auto running = [&] {
        return office_->value("SELECT COUNT(*) FROM information_schema.PROCESSLIST WHERE INFO "
                              "LIKE '%SLEEP(5%' AND INFO NOT LIKE '%COUNT%'");
    };
    const auto until = [&](const char* count) {
        for (int i = 0; i < 500 && running() != count; ++i)
            std::this_thread::sleep_for(20ms);
        return running();
    };
    {
        rds::HttpClient impatient({.quiet = 1s});
        rds::Call call{"quorin.data",
                       "Getsql",
                       {rds::Variant::string("SELECT SLEEP(50)"), rds::Variant(std::int16_t{0}),
                        rds::Variant(std::int16_t{1}), rds::Empty{},
                        rds::Variant::string(connection_)},
                       rds::newBoundary()};
        EXPECT_THROW(impatient.post(office_->address(), rds::callPath(call), rds::encodeCall(call)),
                     data::Error);
    }
    EXPECT_EQ(until("0"), "0");

    headoffice::Options options;
    options.queryTime = 1s;
    options.drain = 1s;
    start(options);
    EXPECT_THAT(refusal("SELECT SLEEP(50)"), HasSubstr("interrupted"));

    options.queryTime = 60s;
    start(options);
    auto call = std::async(std::launch::async, [&] { return refusal("SELECT SLEEP(50)"); });
    EXPECT_EQ(until("1"), "1");
    office_->log(); // which stops it
    EXPECT_THAT(call.get(), HasSubstr("462"));
    EXPECT_EQ(until("0"), "0");
}

TEST_F(HeadOfficeTest, ShowsItsStateOnAnotherPort) {
    headoffice::Options options;
    options.admin = {"127.0.0.1", 0};
    start(options);
    const auto ask = [&](const std::string& request, std::uint16_t port) {
        return tests::RawClient(port).ask(request + " HTTP/1.1\r\nHost: localhost\r\n\r\n");
    };
    const std::uint16_t admin = office_->adminPort();
    EXPECT_THAT(ask("GET /health", admin), AllOf(HasSubstr("200 OK"), HasSubstr("ok: 127.0.0.1:")));
    getsql("SELECT 1");
    EXPECT_TRUE(putsql({"", report("5.0.0")}));
    EXPECT_FALSE(putsql({"", "DELETE FROM POS"}));
    EXPECT_THAT(ask("GET /metrics", admin),
                AllOf(HasSubstr("calls_total{method=\"Getsql\",outcome=\"ok\"} 1\n"),
                      HasSubstr("calls_total{method=\"PUTSQL\",outcome=\"failed\"} 1\n"),
                      HasSubstr("database_connections_open 1\n")));
    EXPECT_THAT(ask("GET /", admin), HasSubstr("5.0.0"));
    EXPECT_THAT(ask("HEAD /", admin), AllOf(HasSubstr("200 OK"), Not(HasSubstr("<html"))));
    const std::string counters = office_->address();
    EXPECT_THAT(ask("GET /metrics",
                    static_cast<std::uint16_t>(std::stoi(counters.substr(counters.find(':') + 1)))),
                HasSubstr("404"));
}

TEST_F(HeadOfficeTest, ServesSeveralCountersAtOnce) {
    office_->sql(
        "INSERT INTO SHELF SELECT CONCAT('N', seq), REPEAT('가', 100), 3 FROM seq_1_to_500");
    std::vector<std::future<int>> counters;
    for (int counter = 0; counter < 8; ++counter)
        counters.push_back(std::async(std::launch::async, [this] {
            int rows = 0;
            for (int call = 0; call < 10; ++call)
                rows += getsql("SELECT * FROM SHELF WHERE LVL = 3").RecordCount();
            return rows;
        }));
    for (auto& counter : counters)
        EXPECT_EQ(counter.get(), 5000);
}

} // namespace
