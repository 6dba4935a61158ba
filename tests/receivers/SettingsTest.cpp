#include "receivers/ReceiveBusinessInformation.h"
#include "receivers/ReceiveSettings.h"
#include "tests/receivers/ReceiverFixture.h"

namespace quillet::receivers {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

class SettingsTest : public tests::ReceiverFixture {};

TEST_F(SettingsTest, GlobalAndStoreSettingsShareATable) {
    sql("INSERT INTO BAS VALUES ('ZO01','단가',NULL,'1',NULL,'','x','2026-01-02 09:00:00'),"
        "('ZO02','무일자',NULL,NULL,NULL,NULL,NULL,NULL)");
    sql("INSERT INTO RCTBAS VALUES ('1000','ZO01','단가','본점','2',NULL,NULL,NULL,"
        "'2026-01-02 09:00:00'),('1001','ZO03','남',NULL,NULL,NULL,NULL,NULL,'2026-01-02 09:00:00')");
    stamp(sync::Group::Settings) = "2026-01-01 00:00:00";
    const std::string insert =
        " INSERT INTO BAS (BAS_CODE,BS_NAME1,BS_NAME2,BS_M1,BS_M2,BS_M3,BS_M4) VALUES (";
    EXPECT_THAT(statements(ReceiveGlobalSettings),
                ElementsAre(insert + "'ZO01 ','단가 ',' ','1 ','  ',' ','x ' )"));
    EXPECT_EQ(run_.RowTotal, 1);
    receive(ReceiveGlobalSettings);

    // The store's own is found without the blank that its code was stored with.
    run_.append("left over");
    EXPECT_TRUE(ReceiveStoreSettings(run_));
    EXPECT_THAT(run_.statements,
                ElementsAre("",
                            " UPDATE BAS SET BS_NAME1 = '단가 ',BS_NAME2 = '본점 ', BS_M1 = '2 ',"
                            "BS_M2 = '  ',BS_M3 = '  ', BS_M4 = '  ' WHERE BAS_CODE = 'ZO01' "))
        << "what was queued before is gone";
    receive(ReceiveStoreSettings);
    EXPECT_THAT(rows("SELECT BAS_CODE,BS_NAME2,BS_M1 FROM BAS"), ElementsAre("ZO01 |본점 |2 "));

    sql("DROP TABLE BAS, RCTBAS");
    EXPECT_THAT(failure(ReceiveGlobalSettings), StartsWith("설정 자료수신\r\n\r\n-"));
    EXPECT_THAT(failure(ReceiveStoreSettings), StartsWith("가맹점별설정 자료수신\r\n\r\n-"));
}

TEST_F(SettingsTest, BusinessInformation) {
    sql("INSERT INTO RCT VALUES ('1000',' 한솔 밥상 ','000-12-34567','강한결','한들로 12','(느티동)',"
        "'음식점업','한식'),('1001','나루점','000-00-00000',NULL,'갈대길 7',NULL,' ','')");
    sql("INSERT INTO RCTI VALUES ('1000','02-000-1000',84)");
    const auto update = [](const std::string& value, int row) {
        return " UPDATE CF SET CF_CONTENTS = '" + value +
               "' WHERE CF_PART = '회사' AND CF_IDX = " + std::to_string(row) + " ";
    };
    EXPECT_THAT(statements(ReceiveBusinessInformation),
                ElementsAre(update("84", 13), update("한솔 밥상", 1), update("000-12-34567", 2),
                            update("강한결", 3), update("한들로 12 (느티동)", 4),
                            update("02-000-1000", 5), update("음식점업", 6), update("한식", 7)));
    receive(ReceiveBusinessInformation);

    // What is missing is cleared, the number without digits is not; a missing row stays missing.
    run_.headOffice.storeCode = "1001";
    store("DELETE FROM CF WHERE CF_IDX = 3");
    EXPECT_EQ(statements(ReceiveBusinessInformation).size(), 7U);
    EXPECT_EQ(run_.RowTotal, 8) << "whatever the number of statements";
    receive(ReceiveBusinessInformation);
    EXPECT_THAT(
        rows("SELECT CF_IDX,CF_CONTENTS FROM CF WHERE CF_PART = '회사' ORDER BY CF_IDX"),
        ElementsAre("1|나루점", "2|000-12-34567", "4|갈대길 7  ", "5| ", "6| ", "7| ", "13| "));

    run_.headOffice.storeCode = "9999";
    run_.RowTotal = 5;
    EXPECT_THAT(statements(ReceiveBusinessInformation), IsEmpty());
    EXPECT_EQ(run_.RowTotal, 5);
    sql("DROP TABLE RCTI");
    EXPECT_THAT(failure(ReceiveBusinessInformation), StartsWith("사업장정보 자료수신\r\n\r\n-"));
}

} // namespace
} // namespace quillet::receivers
