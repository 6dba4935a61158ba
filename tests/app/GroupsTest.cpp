// Runs that receive every group, and what each of them does when it fails.

#include "tests/app/ReceiveFixture.h"

namespace quillet {
namespace {

using testing::ElementsAre;
using testing::StartsWith;

class GroupsTest : public tests::ReceiveFixture {
protected:
    /// A little of everything at the head office.
    void SetUp() override {
        ReceiveFixture::SetUp();
        if (IsSkipped())
            return;
        category("101000000000000", "밥류", "'Y'", "'A402'");
        for (const char* statement :
             {"INSERT INTO PR (PR_CODE,PR_NAME,KD_ID,PR_DATE,PR_OP1,PR_END) VALUES "
              "('A1','비빔밥','101000000000000','2026-05-01 10:00:00',9000,'0'),"
              "('A2','국밥','101000000000000','2026-05-01 10:00:00',8000,'0')",
              "INSERT INTO PRR VALUES ('1000','A2','1','2026-05-01 10:00:00')",
              "INSERT INTO PROP VALUES ('01','맵게')",
              "INSERT INTO PRC VALUES ('A1','C1','전채',1,0,1),('A1','C2','후식',1,5,2)",
              "INSERT INTO PRO VALUES ('A1','01')", "INSERT INTO PRS VALUES ('A1','S1','밥',1,1)",
              "INSERT INTO CT (CT_CODE,CT_GUBUN,CT_NAME,CT_END,CT_POINT,CT_UPOINT,CT_VISITN,"
              "CT_DATE) VALUES ('M1','1','고은별','0',100,20,1,'2026-05-01 10:00:00'),"
              "('P1','0','농산','0',0,0,0,'2026-05-01 10:00:00')",
              "INSERT INTO ST (ST_CODE,RCT_CODE,ST_NAME,ST_POSPWD,ST_ASPLVL) VALUES "
              "('U1','1000','강한결','1111','9')",
              "INSERT INTO BAS (BAS_CODE,BAS_NAME1,BAS_OP1,BAS_DATE) VALUES "
              "('Z1','절사','10','2026-05-01 10:00:00')",
              "INSERT INTO RCTBAS (RCT_CODE,BAS_CODE,BAS_NAME1,BAS_OP1,BAS_DATE) VALUES "
              "('1000','Z1','절사','100','2026-05-01 10:00:00'),"
              "('1000','Z2','자리','42','2026-05-01 10:00:00')",
              "INSERT INTO FN (FN_CD1,FN_CD2,FN_NAME,FN_DATE) VALUES "
              "('41','01','매출','2026-05-01 10:00:00')",
              "INSERT INTO RCT (RCT_CODE,RCT_NAME,RCT_NO) VALUES ('1000','본점','000-1')",
              "INSERT INTO RCTI VALUES ('1000','02',84)"})
            sql(statement);
    }

    /// What a person would look at in the store, table by table.
    std::vector<std::string> everything() const {
        std::vector<std::string> all;
        for (const char* query :
             {"SELECT 'KIND',KIND_CODE,KIND_NAME FROM KIND",
              "SELECT 'PR',PR_CODE,PR_NAME,PR_PRICE1,PR_CK,PR_VISIBLE FROM PR ORDER BY PR_CODE",
              "SELECT 'PRC',PRC_CODE,PRC_NAME,PRC_RCV FROM PRC ORDER BY PRC_CODE",
              "SELECT 'PRO',PROP_CODE,PROP_NAME,PRO_RCV FROM PRO ORDER BY PROP_CODE",
              "SELECT 'PRS',PRS_CODE,PRS_QTY,PRS_RCV FROM PRS ORDER BY PRS_CODE",
              "SELECT 'PROP',PROP_CODE,PROP_NAME FROM PROP",
              "SELECT 'CT',CT_CODE,CT_NAME,CT_TPOINT,CT_GUBUN FROM CT ORDER BY CT_CODE",
              "SELECT 'USR',USR_CODE,USR_NAME,USR_PASS FROM USR",
              "SELECT 'BAS',BAS_CODE,BS_NAME1,BS_M1 FROM BAS ORDER BY BAS_CODE",
              "SELECT 'FN',FN_KEY,FN_NAME FROM FN",
              "SELECT 'CF',CF_IDX,CF_CONTENTS FROM CF WHERE CF_PART = '회사' AND CF_IDX IN (1,5)"})
            for (std::string& row : counter_.rows(query))
                all.push_back(std::move(row));
        return all;
    }

    /// Leaves the window open after a run that wrote nothing, with only some groups ticked.
    void startWithOnly(const std::vector<std::size_t>& groups) {
        sql("RENAME TABLE KIND TO ELSEWHERE");
        counter_.start();
        sql("RENAME TABLE ELSEWHERE TO KIND");
        ASSERT_TRUE(counter_.isWindowOpen());
        for (std::size_t group = 0; group < sync::Groups; ++group)
            counter_.tick(group, std::count(groups.begin(), groups.end(), group) > 0);
        counter_.click("Cmd1(0)");
        counter_.waitForEndOfRun();
    }

    /// The head office's rows count as changed since the last receive once more.
    void forgetStamps() const {
        counter_.store("UPDATE UPD SET UPD_PR='2000',UPD_CT='2000',UPD_BAS='2000',UPD_FN='2000'");
    }
};

TEST_F(GroupsTest, AFirstReceiveBringsEverythingAndALaterOneWhatChanged) {
    counter_.start();
    EXPECT_FALSE(counter_.isWindowOpen());
    EXPECT_EQ(counter_.downloadLog(), "no file");
    EXPECT_EQ(counter_.dailyLog(), "no folder");
    EXPECT_THAT(everything(),
                ElementsAre("KIND|0101|밥류", "PR|A1|비빔밥|9000|0|0", "PR|A2|국밥|8000|0|1",
                            "PRC|C1|전채|9", "PRC|C2|후식|9", "PRO|01|맵게|9", "PRS|S1|1|9",
                            "PROP|01|맵게", "CT|M1|고은별|120|0", "CT|P1|농산|0|1",
                            "USR|U1|강한결|1111", "BAS|Z1 |절사 |100 ", "BAS|Z2 |자리 |42 ",
                            "FN|4101|매출", "CF|1|본점", "CF|5|02"));
    EXPECT_EQ(counter_.text("Label3(0)"), "15")
        << "stamps 1, menu 9, people 2 and 1, settings 1, titles 1; the business information is "
           "not in the total";
    EXPECT_EQ(counter_.text("Label3(1)"), "22") << "but is counted; the last statement is not";
    EXPECT_EQ(counter_.text("Label2(5)"), "사업자 정보 수신 중");
    EXPECT_EQ(counter_.text("lbl_MSG"), "기초자료 수신 완료했습니다");
    const auto stamps = counter_.rows("SELECT UPD_PR FROM UPD WHERE UPD_PR = UPD_CT AND UPD_PR = "
                                      "UPD_USR AND UPD_PR = UPD_BAS AND UPD_PR = UPD_FN");
    ASSERT_EQ(stamps.size(), 1U);
    EXPECT_THAT(stamps[0], testing::ContainsRegex("^[0-9-]{10} [0-9:]{8}$"));

    sql("INSERT INTO PR (PR_CODE,PR_NAME,KD_ID,PR_DATE,PR_OP1) VALUES "
        "('A3','김밥','101000000000000','2036-01-01',3000)");
    for (const char* change :
         {"UPDATE KIND SET KD_NAME = '밥'",
          "UPDATE PR SET PR_END = '2', PR_DATE = '2036-01-01' WHERE PR_CODE = 'A1'",
          "UPDATE PR SET PR_OP1 = 1 WHERE PR_CODE = 'A2'", // no date: does not come
          "DELETE FROM PRR", "UPDATE PROP SET PROP_NAME = '안 맵게'",
          "INSERT INTO PRC VALUES ('A2','C3','국',1,0,1)",
          "INSERT INTO PRS VALUES ('A2','S2','국',3,1)",
          "UPDATE CT SET CT_POINT = 200, CT_DATE = '2036-01-01' WHERE CT_CODE = 'M1'",
          "UPDATE CT SET CT_NAME = '그대로' WHERE CT_CODE = 'P1'",
          "UPDATE ST SET ST_NAME = '강결', ST_POSPWD = '2222'",
          "UPDATE BAS SET BAS_NAME1 = '원 절사', BAS_DATE = '2036-01-01'",
          "UPDATE FN SET FN_NAME = '음식', FN_DATE = '2036-01-01'",
          "UPDATE RCTI SET RCTI_CPHONE = '03'"})
        sql(change);
    counter_.store("UPDATE UPD SET UPD_PR='2026-06-01',UPD_CT='2026-06-01',UPD_USR='2026-06-01',"
                   "UPD_BAS='2026-06-01',UPD_FN='2026-06-01'");
    counter_.start();
    EXPECT_FALSE(counter_.isWindowOpen());
    EXPECT_THAT(counter_.rows("SELECT COUNT(*) FROM UPD WHERE UPD_PR > '2026-06-02' AND UPD_PR = "
                              "UPD_CT AND UPD_PR = UPD_USR AND UPD_PR = UPD_BAS AND UPD_PR = "
                              "UPD_FN"),
                ElementsAre("1"));
    // A1 is discontinued: its courses, options and sets no longer come and are swept.
    EXPECT_THAT(everything(),
                ElementsAre("KIND|0101|밥", "PR|A1|비빔밥|9000|1|0", "PR|A2|국밥|8000|0|1",
                            "PR|A3|김밥|3000|0|0", "PRC|C3|국|9", "PRS|S2|3|9", "PROP|01|안 맵게",
                            "CT|M1|고은별 |220|0", "CT|P1|농산|0|1", "USR|U1|강결|1111",
                            "BAS|Z1 |원 절사 |10 ", "BAS|Z2 |자리 |42 ", "FN|4101|음식",
                            "CF|1|본점", "CF|5|03"));
}

TEST_F(GroupsTest, ThePriceOptionChangesProductsAndSets) {
    sql("INSERT INTO BAS (BAS_CODE,BAS_OP1,BAS_OP2) VALUES ('ZO01','Y','2')");
    sql("INSERT INTO CTP VALUES ('1000','1000000000000000','A2',7700,'2026-05-01 10:00:00')");
    sql("INSERT INTO PRS VALUES ('A2','S2','국',1,1)");
    const auto menu = [&] {
        counter_.start();
        EXPECT_FALSE(counter_.isWindowOpen());
        return counter_.rows("SELECT PR_CODE,PR_PRICE1 FROM PR UNION ALL SELECT PRS_CODE,PRS_RCV "
                             "FROM PRS ORDER BY 1");
    };
    EXPECT_THAT(menu(), ElementsAre("A2|7700", "S2|9"));
    sql("UPDATE BAS SET BAS_OP2 = '1' WHERE BAS_CODE = 'ZO01'");
    forgetStamps();
    EXPECT_THAT(menu(), ElementsAre("A1|9000", "A2|7700", "S2|9"));
    sql("UPDATE BAS SET BAS_OP1 = 'y' WHERE BAS_CODE = 'ZO01'"); // not exactly Y
    forgetStamps();
    EXPECT_THAT(menu(), ElementsAre("A1|9000", "A2|8000", "S1|9", "S2|9"));
}

TEST_F(GroupsTest, SetMenusCanBeSkipped) {
    counter_.store("INSERT INTO UPD VALUES ('2000','2000','2000','2000','2000');"
                   "INSERT INTO PRS VALUES ('OLD','S0','옛 세트',1,1,'9');"
                   "INSERT INTO PRC (PR_CODE,PRC_CODE) VALUES ('OLD','C0')");
    const auto received = [&](const std::string& setting) {
        counter_.store("UPDATE CF SET CF_CONTENTS = '" + setting + "' WHERE CF_PART = '영업3'");
        forgetStamps();
        counter_.start();
        EXPECT_FALSE(counter_.isWindowOpen());
        return counter_.rows("SELECT PRS_CODE,PRS_RCV FROM PRS UNION ALL "
                             "SELECT PRC_CODE,PRC_RCV FROM PRC ORDER BY 1");
    };
    // An unmarked row is older than the marks: it is marked now, and goes the next time.
    EXPECT_THAT(received("1"), ElementsAre("C0|9", "C1|9", "C2|9", "S0|9"));
    EXPECT_THAT(received("0.6"), ElementsAre("C1|9", "C2|9", "S0|9")) << "0.6 is 1";
    EXPECT_THAT(received("아니오"), ElementsAre("C1|9", "C2|9", "S1|9")) << "no number is 0";
}

TEST_F(GroupsTest, EachGroupAloneBringsOnlyItselfButSweepsAll) {
    struct Case {
        std::vector<std::size_t> groups; ///< settings and titles cannot be started without others
        std::vector<std::string> tables;
        std::string stamps;
    };
    const std::vector<Case> cases{
        {{1}, {"CT", "CT", "BAS", "BAS", "CF", "CF"}, "0|1|0|0|0"},
        {{2, 3}, {"USR", "BAS", "BAS", "CF", "CF"}, "0|0|1|1|0"},
        {{2, 4}, {"USR", "BAS", "BAS", "FN", "CF", "CF"}, "0|0|1|0|1"},
        {{0},
         {"KIND", "PR", "PR", "PRC", "PRC", "PRO", "PRS", "PROP", "BAS", "BAS", "CF", "CF"},
         "1|0|0|0|0"}};
    for (const auto& [groups, tables, stamps] : cases) {
        counter_.store("DELETE FROM UPD; DELETE FROM CT; DELETE FROM USR; DELETE FROM BAS; "
                       "DELETE FROM FN; INSERT INTO PRC VALUES ('A1','C9','지난번',1,1,1,'9')");
        startWithOnly(groups);
        EXPECT_FALSE(counter_.isWindowOpen());
        std::vector<std::string> seen;
        for (const std::string& row : everything())
            seen.push_back(row.substr(0, row.find('|')));
        EXPECT_EQ(seen, tables) << "whatever is marked of the menu is gone";
        EXPECT_THAT(counter_.rows("SELECT UPD_PR<>'',UPD_CT<>'',UPD_USR<>'',UPD_BAS<>'',UPD_FN<>'' "
                                  "FROM UPD"),
                    ElementsAre(stamps));
    }
}

TEST_F(GroupsTest, AFailingStatementInAnyGroupWritesNothing) {
    counter_.start();
    const std::vector<std::string> before = everything();
    // A table, and the column that gets a name with a quote in it.
    const std::vector<std::pair<std::string, std::string>> names{
        {"KIND", "KD_NAME"},   {"PR", "PR_NAME"}, {"PROP", "PROP_NAME"}, {"PRC", "PRC_NAME"},
        {"PRS", "PRS_NAME"},   {"CT", "CT_NAME"}, {"ST", "ST_NAME"},     {"BAS", "BAS_NAME1"},
        {"RCT", "RCT_SADDR1"}, {"FN", "FN_NAME"}};
    for (const auto& [table, column] : names) {
        SCOPED_TRACE(table);
        forgetStamps();
        const auto stamps = counter_.rows("SELECT * FROM UPD");
        sql("CREATE TABLE KEPT AS SELECT * FROM " + table);
        sql("UPDATE " + table + " SET " + column + " = 'Kim''s'");
        counter_.start();
        sql("DELETE FROM " + table);
        sql("INSERT INTO " + table + " SELECT * FROM KEPT");
        sql("DROP TABLE KEPT");
        EXPECT_TRUE(counter_.isWindowOpen());
        EXPECT_EQ(counter_.text("lbl_MSG"), "기초자료 수신 실패했습니다");
        EXPECT_EQ(everything(), before);
        EXPECT_EQ(counter_.rows("SELECT * FROM UPD"), stamps);
        EXPECT_THAT(counter_.dailyLog(), testing::ContainsRegex("수신에러\r\n[^\r]*Kim's"));
        EXPECT_EQ(counter_.downloadLog(), "no file");
        std::filesystem::remove_all(counter_.folder / "ZELMARO_LOG");
    }

    // The store's own settings are written after the run, on their own.
    sql("UPDATE RCTBAS SET BAS_NAME2 = 'Kim''s' WHERE BAS_CODE = 'Z2'");
    counter_.start();
    EXPECT_FALSE(counter_.isWindowOpen());
    EXPECT_THAT(counter_.rows("SELECT BS_M1 FROM BAS"), ElementsAre("10 ", "42 "));
    EXPECT_EQ(counter_.dailyLog(), "no folder");
    EXPECT_THAT(counter_.downloadLog(), testing::ContainsRegex("^가맹점별설정 자료수신\r\n\r\n-"));
}

TEST_F(GroupsTest, AFailingReceiverSaysWhichGroup) {
    struct Case {
        const char* missing; ///< at the head office
        const char* status;
        const char* title;
    };
    const Case cases[] = {
        {"BAS", "분류자료 수신 실패했습니다", "품목분류 자료수신"},
        {"KIND", "분류자료 수신 실패했습니다", "품목분류 자료수신"},
        {"PRGU", "메뉴자료 수신 실패했습니다", "품목 자료수신"},
        {"PRR", "메뉴취급여부 수신 실패했습니다", "품목 자료수신"},
        {"PROP", "옵션자료 수신 실패했습니다", "품목(옵션설정) 자료수신"},
        {"PRC", "코스메뉴 수신 실패했습니다", "품목(코스) 자료수신"},
        {"PRO", "옵션메뉴 수신 실패했습니다", "품목(옵션) 자료수신"},
        {"PRS", "세트메뉴 수신 실패했습니다", "품목(세트) 자료수신"},
        {"CTMEM", "회원자료 수신 실패했습니다", "회원 자료수신"},
        {"CTCOM", "거래처자료 수신 실패했습니다", "회원 자료수신"},
        {"ST", "사용자자료 수신 실패했습니다", "사용자 자료수신"},
        {"BAS_DATE", "설정자료 수신 실패했습니다", "설정 자료수신"},
        {"FN", "계정과목 수신 실패했습니다", "계정과목 자료수신"},
        {"RCTI", "사업장정보 수신 실패했습니다", "사업장정보 자료수신"},
        {"RCTBAS", "매장별설정자료 수신 실패했습니다", "가맹점별설정 자료수신"},
    };
    for (const auto& [missing, status, title] : cases) {
        SCOPED_TRACE(missing);
        const bool isColumn = std::string_view(missing) == "BAS_DATE";
        const auto rename = [&](const std::string& from, const std::string& to) {
            const std::string change = from + (isColumn ? " " : " TO ") + to;
            sql(isColumn ? "ALTER TABLE BAS CHANGE " + change + " DATETIME"
                         : "RENAME TABLE " + change);
        };
        clearDownloadLog();
        rename(missing, "ELSEWHERE");
        counter_.start();
        rename("ELSEWHERE", missing);
        EXPECT_EQ(counter_.text("lbl_MSG"), status);
        EXPECT_THAT(counter_.downloadLog(), StartsWith(std::string(title) + "\r\n"));
        const bool isAfterTheRun = std::string_view(missing) == "RCTBAS";
        EXPECT_EQ(counter_.isWindowOpen(), !isAfterTheRun);
        EXPECT_EQ(counter_.rows("SELECT * FROM UPD").size(), isAfterTheRun ? 1U : 0U);
    }
    EXPECT_THAT(counter_.rows("SELECT COUNT(*) FROM PR"), ElementsAre("2")) << "the last one wrote";
}

} // namespace
} // namespace quillet
