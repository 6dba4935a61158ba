#include "receivers/ReceiveAccountTitles.h"
#include "receivers/ReceiveMembers.h"
#include "receivers/ReceiveTradePartners.h"
#include "receivers/ReceiveUsers.h"
#include "tests/receivers/ReceiverFixture.h"

namespace quillet::receivers {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class PeopleTest : public tests::ReceiverFixture {};

TEST_F(PeopleTest, Users) {
    sql("INSERT INTO ST VALUES ('U1','1000','강한결','900','E-1','1971-04-09','1','02','010','00012',"
        "'느티로 3 (하동)','101호','2015-03-02','0000-00-00','점장','007','4821','9','0900','10500','9'),"
        "('U2','1000','한가람',NULL,NULL,'0000-00-00','x',NULL,NULL,NULL,NULL,NULL,NULL,'2026-01-31',"
        "NULL,'A1',NULL,NULL,NULL,NULL,'5')");
    sql("INSERT INTO ST (ST_CODE,RCT_CODE,ST_NAME,ST_ASPLVL) VALUES ('U3','1000','세척','0'),"
        "('U4','1000','미정',NULL),('U5','1001','남','5')");
    const std::string insert =
        " INSERT INTO USR (USR_CODE,USR_NAME,USR_SEX,USR_CARD,USR_NO,USR_BIRTH,USR_BIRCHK,USR_PHONE,"
        "USR_CPHONE, USR_EMAIL,USR_ZIP,USR_ADDR1,USR_ADDR2,USR_FDATE,USR_EDATE,USR_GU,USR_DUTY,"
        "USR_DISP,USR_ID,USR_PASS, USR_LVL,USR_ULVL,USR_ATTENDTIME,USR_TIMEPAY,USR_ASPLVL) VALUES ('";
    run_.RowTotal = 77;
    const std::string second = insert + "U2','한가람',0,'','','',0,'','',' ','','','','',"
                                        "'2026-01-31',' ','',1,'0','',' ','','','','5' )";
    EXPECT_THAT(statements(ReceiveUsers),
                ElementsAre(insert +
                                "U1','강한결',0,'900','E-1','1971-04-09',1,'02','010',' ',"
                                "'00012','느티로 3 (하동)','101호','2015-03-02','',' ','점장',1,"
                                "'7','4821',' ','9','0900','10500','9' )",
                            second));
    EXPECT_EQ(run_.RowTotal, 2) << "set, not added";

    store("INSERT INTO USR (USR_CODE,USR_DISP,USR_ID,USR_PASS,USR_LVL,USR_ULVL) "
          "VALUES ('U1',0,'77','own','A','1')");
    EXPECT_THAT(
        statements(ReceiveUsers),
        ElementsAre(" UPDATE USR SET USR_NAME = '강한결',USR_SEX = 0, USR_CARD = '900',"
                    "USR_NO = 'E-1',USR_BIRTH = '1971-04-09', USR_BIRCHK = 1,USR_PHONE = "
                    "'02',USR_CPHONE = '010', USR_EMAIL = ' ',USR_ZIP = '00012',USR_ADDR1 = "
                    "'느티로 3 (하동)', USR_ADDR2 = '101호',USR_FDATE = '2015-03-02',"
                    "USR_EDATE = '', USR_GU = ' ',USR_DUTY = '점장',  USR_ATTENDTIME = "
                    "'0900', USR_TIMEPAY = '10500', USR_ASPLVL = '9' WHERE USR_CODE = 'U1' ",
                    second));
    receive(ReceiveUsers);
    EXPECT_THAT(rows("SELECT USR_NAME,USR_DISP,USR_ID,USR_PASS,USR_LVL,USR_ULVL FROM USR WHERE "
                     "USR_CODE = 'U1'"),
                ElementsAre("강한결|0|77|own|A|1"))
        << "what the counter knows itself stays";

    sql("ALTER TABLE ST MODIFY ST_SECT CHAR(1) NULL");
    sql("UPDATE ST SET ST_SECT = NULL WHERE ST_CODE = 'U2'");
    EXPECT_THAT(
        failure(ReceiveUsers),
        testing::AllOf(StartsWith("사용자 자료수신\r\n UPDATE USR SET "), HasSubstr("\r\n94\r\n")));
    settings_.SaveSetting("HALDREN", "Settings", "가맹점", "1003");
    EXPECT_THAT(statements(ReceiveUsers), IsEmpty());
}

constexpr const char* InsertCustomer =
    " INSERT INTO CT (CT_CODE,CT_LVL,CT_NAME,CT_SEX,CT_NO,CT_BIRTH,CT_BIRCHK,CT_PHONE,CT_CPHONE,"
    "CT_EMAIL, CT_EMCHK,CT_ZIP,CT_ADDR1,CT_ADDR2,CT_CK,CT_TPOINT,CT_RPOINT,CT_UPOINT,CT_VISITN,"
    "CT_SALE,CT_MISU, CT_VISITD,CT_MEMO,CT_DATE,CT_GU,CT_DCHK,CT_FDATE,CT_EDATE,CT_ZIPD,CT_ADDRD1,"
    "CT_ADDRD2, CT_JOB,CT_DAY,CT_ABO,CT_HOBBY,CT_INCODE,CT_INNAME,CT_GUBUN,CT_ST,CT_KD) VALUES (";

TEST_F(PeopleTest, Members) {
    sql("INSERT INTO CT VALUES ('M1','1','고은별','88-0','02','m@x','12','한들로','305호','0',100,20,"
        "7,'2026-10-03 19:20:11','창가 (느티동)','2026-10-03 19:20:30','G1'),"
        "('M2','1',NULL,NULL,NULL,NULL,NULL,NULL,NULL,'1',300,NULL,NULL,NULL,NULL,"
        "'2026-10-03 19:20:30',NULL),"
        "('M0','1','그대로','','','','','','','0',0,0,0,NULL,'','2026-10-03 19:20:29','')");
    sql("INSERT INTO CTMEM VALUES ('M1','3',1,'1988','0','010',1,'15','물빛로','2층','회사원','05-16',"
        "'A','등산','M2','탁우람')");
    stamp(sync::Group::Members) = "2026-10-03 19:20:29";
    const std::string firstFill =
        std::string(InsertCustomer) +
        " 'M1','3','고은별',1,'88-0 ','1988',0,'02 ','010 ','m@x ',1 ,'12 ','한들로 ','305호 ',1,120,"
        "100,20 ,7,0,0,'2026-10-03','창가 (느티동) ','2026-10-03 ','G1 ',0,'  ','  ','15 ','물빛로 ',"
        "'2층 ','회사원 ','05-16 ','A ','등산 ','M2 ','탁우람 ',0,'  ','  ') ";
    EXPECT_THAT(statements(ReceiveMembers),
                ElementsAre(firstFill,
                            std::string(InsertCustomer) +
                                " 'M2',' ','',0,' ','',0,' ',' ',' ',0 ,' ',' ',' ',0,0,300,0 ,0,0,"
                                "0,' ',' ','2026-10-03 ',' ',0,'  ','  ',' ',' ',' ',' ',' ',' ',"
                                "' ',' ',' ',0,'  ','  ') "));
    EXPECT_EQ(run_.RowTotal, 2);

    // Known, as a trade partner; and a store that is not empty.
    store("INSERT INTO CT (CT_CODE,CT_GUBUN,CT_SALE) VALUES ('M1',1,500)");
    EXPECT_THAT(
        statements(ReceiveMembers),
        ElementsAre(
            " UPDATE CT SET CT_LVL = '3 ',CT_NAME = '고은별 ', CT_SEX = 1 ,CT_NO = '88-0 ',CT_BIRTH = "
            "'1988 ', CT_BIRCHK = 0 ,CT_PHONE = '02',CT_CPHONE = '010', CT_EMAIL = 'm@x',CT_EMCHK = "
            "1,CT_ZIP = '12', CT_ADDR1 = '한들로',CT_ADDR2 = '305호',CT_CK = 1, CT_TPOINT = 120,"
            "CT_RPOINT = 100, CT_UPOINT = 20,CT_VISITN = 7,CT_SALE = 0, CT_MISU = 0,CT_VISITD = "
            "'2026-10-03',CT_MEMO = '창가 (느티동)', CT_DATE = '2026-10-03',CT_GU = 'G1',CT_DCHK = 0,"
            " CT_FDATE = ' ',CT_EDATE = ' ',CT_ZIPD = '15', CT_ADDRD1 = '물빛로',CT_ADDRD2 = '2층',"
            "CT_JOB = '회사원', CT_DAY = '05-16',CT_ABO = 'A',CT_HOBBY = '등산', CT_INCODE = 'M2',"
            "CT_INNAME = '탁우람',CT_GUBUN = 0, CT_ST = ' ',CT_KD = ' ' WHERE CT_CODE = 'M1' ",
            std::string(InsertCustomer) +
                "'M2',' ','',0,'','',0,'','','',0,'','','',0,0,300,0,0,0,0,' ','','2026-10-03','',0,"
                "' ',' ','','','','','','','','','',0,' ',' ') "));
    receive(ReceiveMembers);
    EXPECT_THAT(rows("SELECT CT_CODE,CT_GUBUN,CT_SALE,CT_CK FROM CT ORDER BY CT_CODE"),
                ElementsAre("M1|0|0|1", "M2|0|0|0"));

    sql("DROP TABLE CTMEM");
    EXPECT_THAT(failure(ReceiveMembers), StartsWith("회원 자료수신\r\n\r\n-"));
}

TEST_F(PeopleTest, TradePartners) {
    sql("INSERT INTO CT VALUES ('P1','0','농산','81-2','031','f@x','44','들판로','','1',1500,500,97,"
        "'2026-10-30 05:40:00','새벽 납품','2025-02-11 10:00:00','G2'),"
        "('P2','0','장날',NULL,NULL,NULL,NULL,NULL,NULL,'0',0,0,0,NULL,NULL,'2025-02-11 10:00:00',"
        "NULL)");
    sql("INSERT INTO CTCOM VALUES ('P1','2','010','도매','농산물')");
    const std::string farm =
        "'P1','2','농산',0,'81-2',' ',0,'031','010','f@x',0,'44','들판로','',1,"
        "2000,1500,500,97,0,0,'2026-10-30','새벽 납품','2025-02-11','G2',0,' ',"
        "' ',' ',' ',' ',' ',' ',' ',' ',' ',' ',1,'도매','농산물') ";
    const std::string stall = "'P2','','장날',0,'',' ',0,'','','',0,'','','',0,0,0,0,0,0,0,' ','',"
                              "'2025-02-11','',0,' ',' ',' ',' ',' ',' ',' ',' ',' ',' ',' ',1,'',"
                              "'') ";
    const std::string insert = InsertCustomer;
    EXPECT_THAT(statements(ReceiveTradePartners),
                ElementsAre(insert + " " + farm, insert + " " + stall));
    store("INSERT INTO CT (CT_CODE,CT_GUBUN) VALUES ('P1',0)");
    EXPECT_THAT(
        statements(ReceiveTradePartners),
        ElementsAre(
            " UPDATE CT SET CT_LVL = '2',CT_NAME = '농산', CT_SEX = 0,CT_NO = '81-2',CT_BIRTH = ' ',"
            " CT_BIRCHK = 0,CT_PHONE = '031',CT_CPHONE = '010', CT_EMAIL = 'f@x',CT_EMCHK = 0,"
            "CT_ZIP = '44', CT_ADDR1 = '들판로',CT_ADDR2 = '',CT_CK = 1, CT_TPOINT = 2000,CT_RPOINT "
            "= 1500, CT_UPOINT = 500,CT_VISITN = 97,CT_SALE = 0, CT_MISU = 0,CT_VISITD = "
            "'2026-10-30',CT_MEMO = '새벽 납품', CT_DATE = '2025-02-11',CT_GU = 'G2',CT_DCHK = 0, "
            "CT_FDATE = ' ',CT_EDATE = ' ',CT_ZIPD = ' ', CT_ADDRD1 = ' ',CT_ADDRD2 = ' ',CT_JOB = "
            "' ', CT_DAY = ' ',CT_ABO = ' ',CT_HOBBY = ' ', CT_INCODE = ' ',CT_INNAME = ' ',"
            "CT_GUBUN = 1, CT_ST = '도매',CT_KD = '농산물' WHERE CT_CODE = 'P1' ",
            insert + stall));
    receive(ReceiveTradePartners);

    sql("UPDATE CT SET CT_UPOINT = NULL WHERE CT_CODE = 'P2'");
    EXPECT_THAT(failure(ReceiveTradePartners),
                testing::AllOf(StartsWith("회원 자료수신\r\n UPDATE CT SET "),
                               HasSubstr("CT_CODE = 'P1' \r\n94\r\n")))
        << "unlike a member";
}

TEST_F(PeopleTest, AccountTitles) {
    sql("ALTER TABLE FN MODIFY FN_CD1 VARCHAR(4), MODIFY FN_CD2 VARCHAR(4)");
    sql("INSERT INTO FN VALUES ('41','01','음식',1,0,NULL,2,'0','1','식','4101','2026-01-02 09:00:00'),"
        "('52','01','무일자',0,0,0,0,'','','','','0000-00-00 00:00:00')");
    const std::string insert =
        " INSERT INTO FN (FN_CD1,FN_CD2,FN_NAME,FN_SA,FN_SB,FN_SC,FN_SD,FN_SE,FN_CUST,FN_SNAME,"
        "FN_FIND,FN_DATE,FN_KEY)  VALUES ('";
    stamp(sync::Group::AccountTitles) = "2026-01-02 08:59:59";
    EXPECT_THAT(statements(ReceiveAccountTitles),
                ElementsAre(insert + "41','01','음식','1','','','2','','1','식','4101',"
                                     "'2026-01-02 09:00:00','4101' )"));
    EXPECT_EQ(run_.RowTotal, 1);
    // 4 and 101 read like 41 and 01.
    receive(ReceiveAccountTitles);
    sql("UPDATE FN SET FN_CD1 = '4', FN_CD2 = '101', FN_NAME = '겹침', FN_FIND = '0' WHERE FN_CD1 = '41'");
    EXPECT_THAT(statements(ReceiveAccountTitles),
                ElementsAre(" UPDATE FN SET FN_NAME = '겹침', FN_SA = '1',FN_SB = '',FN_SC = '', "
                            "FN_SD = '2',FN_SE = '',FN_CUST = '1', FN_SNAME = '식',FN_FIND = '',"
                            "FN_DATE = '2026-01-02 09:00:00'  WHERE FN_KEY = '4101' "));
    receive(ReceiveAccountTitles);
    EXPECT_THAT(rows("SELECT FN_CD1,FN_CD2,FN_NAME FROM FN"), ElementsAre("41|01|겹침"));
    sql("DROP TABLE FN");
    EXPECT_THAT(failure(ReceiveAccountTitles), StartsWith("계정과목 자료수신\r\n\r\n-"));
}

} // namespace
} // namespace quillet::receivers
