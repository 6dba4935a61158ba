#include "receivers/ReceiveCourseMenus.h"
#include "receivers/ReceiveOptionMenus.h"
#include "receivers/ReceiveOptionNames.h"
#include "receivers/ReceiveSetMenus.h"
#include "tests/receivers/ReceiverFixture.h"

namespace quillet::receivers {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class MenusTest : public tests::ReceiverFixture {
protected:
    void SetUp() override {
        ReceiverFixture::SetUp();
        if (IsSkipped())
            return;
        sql("INSERT INTO KIND (KD_ID,KD_NAME,KD_CKSD,KD_CKGU,KD_LVL) VALUES "
            "('101000000000000','코스',NULL,'A420',1),('102000000000000','숨김','N','A420',1)");
        sql("INSERT INTO PR (PR_CODE,PR_NAME,KD_ID,PR_END) VALUES "
            "('A1','','101000000000000','0'),('A12','','303000000000000','1'),"
            "('B','','101000000000000','2'),('C','','102000000000000','0')");
    }
};

TEST_F(MenusTest, CourseMenus) {
    sql("INSERT INTO PRC VALUES ('A1','22','국물',0.50,10,2),('A1','23','찌개',1.00,0,1),"
        "('B','1','단종',1,0,1),('C','1','숨김',1,0,1),('Z','1','없음',1,0,1)");
    const std::string insert =
        " INSERT INTO PRC (PR_CODE,PRC_CODE,PRC_NAME,PRC_QTY,PRC_INTERVAL,PRC_NO, PRC_RCV) VALUES (";
    const std::string soup = insert + "'A1','22','국물',0.5,10,2, '1') ";
    EXPECT_THAT(statements(ReceiveCourseMenus),
                ElementsAre(soup, insert + "'A1','23','찌개',1,0,1, '1') "));

    // A12 with 3 reads like A1 with 23: an update of a row that is not there.
    store("INSERT INTO PRC VALUES ('a1','23','옛 찌개',9,9,9,'9')");
    sql("INSERT INTO PRC VALUES ('A12','3','겹침',1,5,3)");
    EXPECT_THAT(statements(ReceiveCourseMenus),
                ElementsAre(soup,
                            " UPDATE PRC SET  PRC_NAME = '찌개',PRC_QTY = 1, PRC_INTERVAL = 0,"
                            "PRC_NO = 1,  PRC_RCV      = '1'  WHERE PR_CODE = 'A1' AND PRC_CODE = "
                            "'23' ",
                            HasSubstr("WHERE PR_CODE = 'A12' AND PRC_CODE = '3' ")));
    receive(ReceiveCourseMenus);
    EXPECT_THAT(rows("SELECT PR_CODE,PRC_CODE,PRC_NAME,PRC_QTY,PRC_RCV FROM PRC ORDER BY PRC_CODE"),
                ElementsAre("A1|22|국물|0.5|1", "a1|23|찌개|1|1"));

    sql("ALTER TABLE PRC MODIFY PRC_QTY DECIMAL(8,2) NULL");
    sql("UPDATE PRC SET PRC_QTY = NULL WHERE PRC_CODE = '23'");
    EXPECT_THAT(failure(ReceiveCourseMenus),
                testing::AllOf(StartsWith("품목(코스) 자료수신\r\n UPDATE PRC SET "),
                               HasSubstr("PRC_CODE = '22' \r\n94\r\n")));
}

TEST_F(MenusTest, OptionMenusAndNames) {
    sql("INSERT INTO PROP VALUES ('01','덜 맵게'),('02','맵게')");
    sql("INSERT INTO PRO VALUES ('A1','01'),('A12','99'),('B','01'),('C','01')");
    const std::string insert = " INSERT INTO PRO (PR_CODE,PROP_CODE,PROP_NAME, PRO_RCV) VALUES (";
    EXPECT_THAT(statements(ReceiveOptionMenus),
                ElementsAre(insert + "'A1','01','덜 맵게', '1') ", insert + "'A12','99','', '1') "))
        << "an option without a name has an empty one";
    store("INSERT INTO PRO VALUES ('A1','01','옛','9')");
    EXPECT_THAT(statements(ReceiveOptionMenus),
                ElementsAre(" UPDATE PRO SET PROP_NAME = '덜 맵게', PRO_RCV = '1'  WHERE PR_CODE = "
                            "'A1' AND PROP_CODE = '01' ",
                            insert + "'A12','99','', '1' ) "));
    receive(ReceiveOptionMenus);

    store("INSERT INTO PROP VALUES ('02','옛'),('03','남음')");
    EXPECT_THAT(statements(ReceiveOptionNames),
                ElementsAre(" INSERT INTO PROP (PROP_CODE,PROP_NAME) VALUES ('01','덜 맵게') ",
                            " UPDATE PROP SET  PROP_NAME = '맵게' WHERE PROP_CODE = '02' "));
    receive(ReceiveOptionNames);
    EXPECT_THAT(rows("SELECT PROP_CODE,PROP_NAME FROM PROP ORDER BY PROP_CODE"),
                ElementsAre("01|덜 맵게", "02|맵게", "03|남음"));
    sql("DROP TABLE PROP");
    EXPECT_THAT(failure(ReceiveOptionNames), StartsWith("품목(옵션설정) 자료수신\r\n\r\n-"));
    EXPECT_THAT(failure(ReceiveOptionMenus), StartsWith("품목(옵션) 자료수신\r\n\r\n-"));
}

TEST_F(MenusTest, SetMenusWithAndWithoutStorePrices) {
    sql("INSERT INTO PRS VALUES ('A1','1','찌개',1,1),('A12','1','전골',2.50,1),('B','1','단종',1,1)");
    sql("INSERT INTO CTP VALUES ('1000','1000000000000000','A12',1,NULL),"
        "('1000','2000000000000000','A12',1,NULL),('1000','1000000000000000','B',1,NULL),"
        "('1001','1000000000000000','A1',1,NULL)");
    const std::string columns =
        " INSERT INTO PRS (PR_CODE,PRS_CODE,PRS_NAME,PRS_QTY,PRS_NO, PRS_RCV";

    // Without: only what is on sale.
    run_.priceOptionFlag = "y"; // not exactly "Y"
    EXPECT_THAT(statements(ReceiveSetMenus),
                ElementsAre(columns + " ) VALUES ('A1','1','찌개',1,1, '1') "));
    store("INSERT INTO PRS VALUES ('A1','1','옛',9,9,'9')");
    EXPECT_THAT(
        statements(ReceiveSetMenus),
        ElementsAre(" UPDATE PRS SET  PRS_NAME = '찌개',PRS_QTY = 1,PRS_NO = 1,  PRS_RCV  = "
                    "'1'  WHERE PR_CODE = 'A1' AND PRS_CODE = '1' "));

    // With: whatever has a price row here, once for each.
    run_.priceOptionFlag = "Y";
    const std::string item = columns + ") VALUES ('A12','1','전골',2.5,1, '1') ";
    EXPECT_THAT(statements(ReceiveSetMenus), ElementsAre(item, item));
    settings_.SaveSetting("HALDREN", "Settings", "가맹점", "");
    EXPECT_THAT(statements(ReceiveSetMenus), IsEmpty());
    sql("DROP TABLE PRS");
    EXPECT_THAT(failure(ReceiveSetMenus), StartsWith("품목(세트) 자료수신\r\n\r\n-"));
}

} // namespace
} // namespace quillet::receivers
