// Rows of the real database, fetched through the wire and directly: they must be the same.

#include "data/Recordset.h"
#include "rds/DataSpace.h"
#include "tests/support/TestHeadOffice.h"

#include <gmock/gmock.h>

#include <regex>

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

    data::Recordset remotely(std::string sql) {
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
        data::Recordset direct = connection.read(sql);
        data::Recordset remote = remotely(sql);
        EXPECT_EQ(remote.RecordCount(), direct.RecordCount()) << sql;
        EXPECT_EQ(remote.Fields().size(), direct.Fields().size()) << sql;
        std::size_t cells = 0;
        for (; !direct.Eof() && !remote.Eof(); direct.MoveNext(), remote.MoveNext())
            for (std::size_t column = 0; column < direct.Fields().size(); ++column, ++cells) {
                const data::Value &expected = direct.Item(column), &value = remote.Item(column);
                SCOPED_TRACE(sql + ", " + direct.Fields()[column].Name);
                EXPECT_EQ(remote.Fields()[column].Name, direct.Fields()[column].Name);
                EXPECT_EQ(value.isNull(), expected.isNull());
                EXPECT_EQ(value.toText(), expected.toText());
            }
        return cells;
    }

    std::unique_ptr<TestHeadOffice> headOffice_;
};

TEST_F(MariaDbTest, EveryColumnTypeSurvivesTheWire) {
    // BIGINT as INT: the option 16384 of the counters' string.
    const std::string columns =
        "C1 TINYINT?,C2 TINYINT UNSIGNED?,C3 SMALLINT?,C4 SMALLINT UNSIGNED?,C5 MEDIUMINT?,C6 INT?,"
        "C7 INT UNSIGNED?,C8 BIGINT?,C9 YEAR?,D1 FLOAT?,D2 DOUBLE?,D3 DECIMAL(12,2)?,"
        "D4 DECIMAL(30,0)?,D5 BIT(1)?,D6 DATE?,D7 DATETIME?,D8 DATETIME(3)?,D9 TIME?,E1 CHAR(20)?,"
        "E2 VARCHAR(100)?,E3 TEXT?,E4 ENUM('예','아니오')?,E5 SET('a','b')?,E6 BINARY(4)?,"
        "E7 VARBINARY(300)?,E8 BLOB?";
    const std::string rows =
        "(-128,255,-32768,65535,-8388608,-2147483648,4294967295,-2147483648,1999,1.1,0.1,1500.00,"
        "999999999999999999999999999999,1,'1999-12-31','2006-07-06 22:43:07',"
        "'2006-07-06 22:43:07.123','23:59:58','한글','똠방각하 café',REPEAT('가나다라', 5000),'예',"
        "'a,b',X'00FF0001',X'00',REPEAT(X'00FF', 3000)),"
        "(127,0,0,0,0,0,0,0,1999,-1e20,1e300,-0.05,0,0,'0000-00-00','0000-00-00 00:00:00',"
        "'0000-00-00 00:00:00','00:00:00',' ',REPEAT('😀',100),'','아니오','','','',''),"
        "(0,0,0,0,0,0,0,0,1999,0,0,0,0,0,'0000-00-00',0,0,0,'',' x ',' ','예','','',' ',' ')";
    for (const std::string nullable : {" NULL", " NOT NULL"}) {
        const std::string table = nullable == " NULL" ? "T0" : "T1";
        headOffice_->sql("CREATE TABLE " + table + " (" +
                         std::regex_replace(columns, std::regex("\\?"), nullable) + ")");
        headOffice_->sql("INSERT INTO " + table + " VALUES " + rows);
        if (table == "T0")
            headOffice_->sql("INSERT INTO T0 VALUES ()");
        EXPECT_EQ(compare("SELECT * FROM " + table), 26U * (table == "T0" ? 4 : 3));
    }
    compare("SELECT 0,' ',CONCAT('가',1),NOW() > '2000-01-01',NULL,1.50,CURDATE(),IF(1,'',2)");
    compare("SELECT C1 FROM T0 WHERE 1 = 0");
}

TEST_F(MariaDbTest, EveryTableOfTheSampleChainSurvivesTheWire) {
    std::size_t cells = 0;
    for (const char* table : {"KIND", "PR", "PRGU", "CTP", "PRR", "PRC", "PRO", "PRS", "PROP", "ST",
                              "CT", "CTMEM", "CTCOM", "FN", "RCT", "RCTI", "RCTBAS", "BAS", "POS"})
        cells += compare(std::string("SELECT * FROM quillet_chain.") + table);
    EXPECT_GT(cells, 50'000U);
}

} // namespace
} // namespace quillet
