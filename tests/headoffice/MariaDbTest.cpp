// Rows of the real database, fetched through the wire and directly: they must be the same.

#include "db/Recordset.h"
#include "rds/DataSpace.h"
#include "tests/support/TestHeadOffice.h"

#include <gmock/gmock.h>

#include <map>

namespace quillet {
namespace {

using tests::TestHeadOffice;

class MariaDbTest : public testing::Test {
protected:
    void SetUp() override {
        if (!TestHeadOffice::isAvailable())
            GTEST_SKIP() << "no head office database (scripts/test starts one)";
        headOffice_ = std::make_unique<TestHeadOffice>();
    }

    db::Recordset remotely(std::string sql) {
        rds::Variant unread;
        std::string connection = headOffice_->connectionString();
        return rds::DataSpace()
            .CreateObject("quorin.data", "http://" + headOffice_->address())
            .Getsql(sql, 0, 1, unread, connection);
    }

    /// Compares every cell and returns how many there were.
    std::size_t compare(const std::string& sql) {
        db::Connection connection;
        connection.Open(headOffice_->connectionString());
        db::Recordset direct;
        direct.Open(sql, connection);
        db::Recordset remote = remotely(sql);
        EXPECT_EQ(remote.RecordCount(), direct.RecordCount()) << sql;
        EXPECT_EQ(remote.Fields().size(), direct.Fields().size()) << sql;
        std::size_t cells = 0;
        for (; !direct.Eof() && !remote.Eof(); direct.MoveNext(), remote.MoveNext())
            for (std::size_t column = 0; column < direct.Fields().size(); ++column, ++cells) {
                EXPECT_EQ(remote.Item(column).isNull(), direct.Item(column).isNull())
                    << sql << ", " << direct.Fields()[column].Name;
                EXPECT_EQ(remote.Item(column).toText(), direct.Item(column).toText())
                    << sql << ", " << direct.Fields()[column].Name;
            }
        for (std::size_t column = 0; column < direct.Fields().size(); ++column)
            EXPECT_EQ(remote.Fields()[column].Name, direct.Fields()[column].Name);
        return cells;
    }

    std::unique_ptr<TestHeadOffice> headOffice_;
};

TEST_F(MariaDbTest, EveryColumnTypeSurvivesTheWire) {
    const std::map<std::string, std::vector<std::string>> types{
        {"TINYINT", {"-128", "127"}},
        {"TINYINT UNSIGNED", {"255"}},
        {"SMALLINT", {"-32768"}},
        {"SMALLINT UNSIGNED", {"65535"}},
        {"MEDIUMINT", {"-8388608"}},
        {"INT", {"-2147483648"}},
        {"INT UNSIGNED", {"4294967295"}},
        {"BIGINT", {"-2147483648"}}, // as INT: the option 16384 of the counters' string
        {"YEAR", {"1999"}},
        {"FLOAT", {"1.1", "-1e20"}},
        {"DOUBLE", {"0.1", "1e300"}},
        {"DECIMAL(12,2)", {"1500.00", "-0.05"}},
        {"DECIMAL(30,0)", {"999999999999999999999999999999"}},
        {"BIT(1)", {"1", "0"}},
        {"DATE", {"'1999-12-31'", "'0000-00-00'"}},
        {"DATETIME", {"'2006-07-06 22:43:07'", "'0000-00-00 00:00:00'"}},
        {"DATETIME(3)", {"'2006-07-06 22:43:07.123'"}},
        {"TIME", {"'23:59:58'"}},
        {"CHAR(20)", {"'한글'", "''", "' '"}},
        {"VARCHAR(200)", {"'똠방각하 café'", "''", "' x '"}},
        {"TEXT", {"REPEAT('가나다라', 5000)", "''"}},
        {"ENUM('예','아니오')", {"'예'"}},
        {"SET('a','b')", {"'a,b'", "''"}},
        {"BINARY(4)", {"X'00FF0001'"}},
        {"VARBINARY(300)", {"X'00'", "''"}},
        {"BLOB", {"REPEAT(X'00FF', 3000)"}}};
    std::size_t cells = 0;
    std::size_t inserted = 0;
    int table = 0;
    for (const auto& [type, literals] : types)
        for (const char* nullable : {"NULL", "NOT NULL"}) {
            const std::string name = "T" + std::to_string(table++);
            headOffice_->sql("CREATE TABLE " + name + " (A INT, B " + type + " " + nullable + ")");
            std::vector<std::string> rows;
            for (const std::string& literal : literals)
                rows.push_back("(1," + literal + ")");
            if (std::string(nullable) == "NULL")
                rows.emplace_back("(NULL,NULL)");
            for (const std::string& row : rows)
                headOffice_->sql("INSERT INTO " + name + " VALUES " + row);
            inserted += rows.size();
            cells += compare("SELECT A,B FROM " + name);
        }
    EXPECT_EQ(cells, 2 * inserted);
    compare("SELECT 0,' ',CONCAT('가',1),NOW() > '2000-01-01',NULL,1.50,CURDATE(),IF(1,'',2)");
    compare("SELECT A FROM T0 WHERE 1 = 0");
}

TEST_F(MariaDbTest, EveryTableOfTheSampleChainSurvivesTheWire) {
    std::size_t cells = 0;
    for (const char* table : {"KIND", "PR", "PRGU", "CTP", "PRR", "PRC", "PRO", "PRS", "PROP", "ST",
                              "CT", "CTMEM", "CTCOM", "FN", "RCT", "RCTI", "RCTBAS", "BAS", "POS"})
        cells += compare(std::string("SELECT * FROM quillet_chain.") + table);
    EXPECT_GT(cells, 50'000U);
}

TEST_F(MariaDbTest, AFailedQueryIsTheDatabasesOwnError) {
    try {
        remotely("SELECT * FROM NOWHERE");
        FAIL() << "no error";
    } catch (const db::Error& error) {
        EXPECT_EQ(error.Number(), -2147217865);
        EXPECT_THAT(error.Description(), testing::HasSubstr("NOWHERE"));
    }
}

} // namespace
} // namespace quillet
