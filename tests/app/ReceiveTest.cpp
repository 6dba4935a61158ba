// Whole receives as a person sees them: MariaDB, HTTP, window, store file.

#include "files/Paths.h"
#include "tests/app/ReceiveFixture.h"
#include "tests/support/TamperingProxy.h"

#include <QGuiApplication>
#include <gmock/gmock.h>

namespace quillet {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class ReceiveTest : public tests::ReceiveFixture {
protected:
    std::vector<std::string> kinds() const {
        return counter_.rows("SELECT KIND_CODE,KIND_NAME,KIND_ORDER,KIND_VISIBLE FROM KIND "
                             "ORDER BY KIND_CODE");
    }
};

TEST_F(ReceiveTest, AQuoteInATextRollsTheWholeRunBack) {
    category("101000000000000", "밥류", "'Y'", "'A402'");
    category("102000000000000", "할매''s -- 국수", "'Y'", "'A402'");
    receivedBefore();
    counter_.store("INSERT INTO KIND VALUES ('0101','옛 이름',1,0),('0102','옛 국수',2,0)");

    counter_.start();

    EXPECT_TRUE(counter_.isWindowOpen());
    EXPECT_EQ(counter_.text("lbl_MSG"), "기초자료 수신 실패했습니다");
    EXPECT_TRUE(counter_.isEnabled("Cmd1(0)"));
    EXPECT_TRUE(counter_.isEnabled("Cmd1(1)"));
    EXPECT_THAT(kinds(), ElementsAre("0101|옛 이름|1|0", "0102|옛 국수|2|0"));
    EXPECT_THAT(counter_.rows("SELECT UPD_PR FROM UPD"), ElementsAre("2026-01-01 00:00:00"));
    EXPECT_THAT(counter_.dailyLog(),
                HasSubstr("\r\n수신에러\r\n UPDATE KIND SET KIND_NAME = '할매's -- 국수' WHERE "
                          "KIND_CODE = '0102' \r\n"));

    // The head office mends the name; the operator presses the button.
    headOffice_->sql("UPDATE KIND SET KD_NAME = '할매 국수' WHERE KD_ID = '102000000000000'");
    counter_.click("Cmd1(0)");
    counter_.waitForEndOfRun();
    EXPECT_FALSE(counter_.isWindowOpen());
    EXPECT_THAT(kinds(), ElementsAre("0101|밥류|1|0", "0102|할매 국수|2|0"));
}

TEST_F(ReceiveTest, QuotesInATextWriteNoOtherColumn) {
    counter_.store("INSERT INTO USR (USR_CODE,USR_NAME,USR_PASS,USR_LVL) VALUES "
                   "('U1','강한결','own','A'),('U2','한가람','own','A')");
    headOffice_->sql("INSERT INTO ST (ST_CODE,RCT_CODE,ST_NAME,ST_SECT,ST_ASPLVL) VALUES "
                     "('U2','1000','a'',USR_PASS=''4821'',USR_LVL=''9','1','9')");
    counter_.start();
    EXPECT_EQ(counter_.text("lbl_MSG"), "사용자자료 수신 실패했습니다");
    EXPECT_THAT(counter_.rows("SELECT USR_CODE,USR_NAME,USR_PASS,USR_LVL FROM USR"),
                ElementsAre("U1|강한결|own|A", "U2|한가람|own|A"));
    EXPECT_THAT(counter_.rows("SELECT * FROM UPD"), IsEmpty());
    EXPECT_THAT(counter_.downloadLog(), StartsWith("사용자 자료수신\r\n\r\n-2147217900\r\n"));
    EXPECT_THAT(counter_.downloadLog(), testing::EndsWith(": USR  USR_CODE = 'U2'\r\n"));
}

TEST_F(ReceiveTest, APartlyTickedLaterRunFailsAsAWhole) {
    headOffice_->sql("DROP TABLE KIND"); // so that the automatic run leaves the window open
    receivedBefore();
    counter_.start();
    ASSERT_TRUE(counter_.isWindowOpen());
    std::filesystem::remove_all(counter_.folder / "log");
    headOffice_->sql("CREATE TABLE KIND (KD_ID CHAR(15), KD_NAME VARCHAR(40), KD_ORDER INT, "
                     "KD_CKSD CHAR(1), KD_CKGU VARCHAR(4), KD_LVL INT)");
    category("101000000000000", "밥류", "'Y'", "'A402'");
    for (const std::size_t other : {1U, 2U, 3U, 4U})
        counter_.tick(other, false);
    counter_.click("Cmd1(0)");
    counter_.waitForEndOfRun();

    EXPECT_EQ(counter_.text("lbl_MSG"), "기초자료 수신 실패했습니다");
    EXPECT_THAT(counter_.dailyLog(),
                testing::ContainsRegex(" UPDATE UPD SET  UPD_PR = '[-0-9: ]*' ,,,,\r\n"));
    EXPECT_THAT(kinds(), IsEmpty());
}

TEST_F(ReceiveTest, TheSelectionMessageLooksAtThreeBoxesOnly) {
    counter_.settings.SaveSetting("HALDREN", "Settings", "개체명", "no.such");
    counter_.start();
    ASSERT_TRUE(counter_.isWindowOpen());
    counter_.answerMessageBoxes();
    for (const std::size_t box : {0U, 1U, 2U})
        counter_.tick(box, false);
    counter_.click("Cmd1(0)");
    EXPECT_THAT(counter_.messageBoxes,
                ElementsAre("기초자료 선택: 기초자료 수신 정보를 선택하세요"));
    EXPECT_TRUE(counter_.isEnabled("Cmd1(0)"));
    counter_.click("Cmd1(1)");
    EXPECT_FALSE(counter_.isWindowOpen());
}

TEST_F(ReceiveTest, ServerFailuresAreTheGroupsAndWriteNothing) {
    category("101000000000000", "밥류", "'Y'", "'A402'");
    receivedBefore();
    const auto fails = [&](const std::string& why) {
        clearDownloadLog();
        counter_.start();
        EXPECT_TRUE(counter_.isWindowOpen()) << why;
        EXPECT_EQ(counter_.text("lbl_MSG"), "분류자료 수신 실패했습니다") << why;
        EXPECT_TRUE(counter_.isEnabled("Cmd1(0)")) << why;
        EXPECT_THAT(kinds(), IsEmpty()) << why;
        EXPECT_EQ(counter_.dailyLog(), "no folder") << why;
        return counter_.downloadLog();
    };
    const auto set = [&](const char* key, const std::string& value) {
        counter_.settings.SaveSetting("HALDREN", "Settings", key, value);
    };
    const auto log = [](const std::string& number, const std::string& text) {
        return testing::AllOf(StartsWith("품목분류 자료수신\r\n\r\n" + number + "\r\n"),
                              HasSubstr(text));
    };

    set("개체명", "no.such");
    EXPECT_THAT(fails("unknown object"), log("-2147024809", ""));
    set("개체명", "");
    EXPECT_THAT(fails("no object name"), log("429", "create object"));
    set("개체명", "quorin.data");
    set("DBName", "quillet_test_nowhere");
    EXPECT_THAT(fails("no such database"),
                log("-2147467259", "quillet_test_nowhere is not served"));
    set("DBName", headOffice_->databaseName());
    set("1차서버", "127.0.0.1:1");
    EXPECT_THAT(fails("nobody answers"), log("462", "127.0.0.1:1"));
    set("1차서버", headOffice_->address());
    headOffice_->sql("DROP TABLE KIND");
    EXPECT_THAT(fails("no such table"), log("-2147217865", "KIND"));

    std::filesystem::remove_all(counter_.folder / "log");
    counter_.start();
    EXPECT_EQ(counter_.downloadLog(), "no folder") << "it is not created";
}

TEST_F(ReceiveTest, NothingOfABrokenReplyIsUsed) {
    for (int i = 100; i < 130; ++i)
        category(std::to_string(i) + "000000000000", "분류", "'Y'", "'A402'");
    const auto downloadLogAfter = [&](const tests::TamperingProxy::Tamper& tamper) {
        const tests::TamperingProxy proxy(headOffice_->address(), tamper);
        counter_.settings.SaveSetting("HALDREN", "Settings", "1차서버", proxy.address());
        clearDownloadLog();
        counter_.start();
        EXPECT_TRUE(counter_.isWindowOpen());
        EXPECT_EQ(counter_.text("lbl_MSG"), "분류자료 수신 실패했습니다");
        EXPECT_THAT(kinds(), IsEmpty());
        EXPECT_THAT(counter_.rows("SELECT * FROM UPD"), IsEmpty());
        return counter_.downloadLog();
    };
    counter_.settings.SaveSetting("ZELMARO_II", "DBLOC", "RCVVERSION", "1.0.0");
    // Replies: 1 the time, 2 the price option, 3 the categories.
    const auto third = [](auto change) {
        return [change](int number, std::string reply) {
            return number == 3 ? change(std::move(reply)) : reply;
        };
    };
    EXPECT_THAT(downloadLogAfter(third([](std::string reply) {
                    reply.resize(reply.size() / 2);
                    return reply;
                })),
                HasSubstr("cut short"));
    EXPECT_THAT(downloadLogAfter(third([](std::string reply) {
                    reply.resize(reply.size() - 1);
                    return reply;
                })),
                StartsWith("품목분류 자료수신\r\n"));
    EXPECT_THAT(downloadLogAfter(third([](const std::string&) {
                    return "HTTP/1.1 500 Oops\r\nContent-Length: 0\r\n\r\n";
                })),
                HasSubstr("500"));
    EXPECT_THAT(downloadLogAfter([](int, const std::string&) { return "no HTTP at all\r\n"; }),
                HasSubstr("\r\n462\r\n"));
}

TEST_F(ReceiveTest, AStoreThatCannotBeUsedSaysWhy) {
    category("101000000000000", "밥류", "'Y'", "'A402'");
    const std::string bytes = tests::readFile(counter_.folder / "food.MDB");
    const auto fails = [&] {
        counter_.start();
        EXPECT_TRUE(counter_.isWindowOpen());
        EXPECT_EQ(counter_.text("lbl_MSG"), "기초자료 수신 실패했습니다");
        const std::string log = counter_.downloadLog();
        clearDownloadLog();
        return log;
    };
    std::filesystem::remove(counter_.folder / "food.MDB");
    EXPECT_THAT(fails(), testing::AllOf(StartsWith("저장소 확인\r\n"), HasSubstr("food.MDB")));
    EXPECT_FALSE(std::filesystem::exists(counter_.folder / "food.MDB"));

    tests::writeFile(counter_.folder / "food.MDB", std::string(8192, 'x'));
    EXPECT_THAT(fails(), testing::AllOf(HasSubstr("food.MDB"), HasSubstr("not a database")));

    tests::writeFile(counter_.folder / "food.MDB",
                     std::string("\0\1\0\0Standard Jet DB\0", 20) + std::string(4096, '\0'));
    EXPECT_THAT(fails(), testing::AllOf(HasSubstr("food.MDB"), HasSubstr("Access")));

    // It is put right; the window that stands open takes it.
    tests::writeFile(counter_.folder / "food.MDB", bytes);
    receivedBefore();
    counter_.click("Cmd1(0)");
    counter_.waitForEndOfRun();
    EXPECT_THAT(kinds(), ElementsAre("0101|밥류|1|0"));
}

TEST_F(ReceiveTest, ClosingDuringARunWaitsForItsEnd) {
    for (int i = 100; i < 140; ++i)
        category(std::to_string(i) + "000000000000", "분류", "'Y'", "'A402'");
    int statements = 0;
    bool wasOpen = false;
    counter_.afterStatement = [&] {
        if (++statements == 5) {
            counter_.window->close();
            counter_.click("Cmd1(0)"); // disabled: no second run inside the first
            wasOpen = counter_.isWindowOpen();
        }
    };
    counter_.start();
    EXPECT_TRUE(wasOpen);
    EXPECT_FALSE(counter_.isWindowOpen());
    EXPECT_EQ(statements, 40) << "41 statements, a yield after each but the last";
    EXPECT_THAT(counter_.rows("SELECT COUNT(*) FROM KIND"), ElementsAre("40"));
}

TEST_F(ReceiveTest, StartUpReadsTheSettingsInItsWay) {
    category("101000000000000", "밥류", "'Y'", "'A402'");
    const std::string elsewhere = files::textOf(counter_.folder / "포스");
    std::filesystem::create_directory(counter_.folder / "포스");
    std::filesystem::rename(counter_.folder / "food.MDB", counter_.folder / "포스/food.MDB");
    counter_.settings.SaveSetting("외식업", "LOCATION", "ID", elsewhere);
    counter_.settings.SaveSetting("HALDREN", "Settings", "1차서버", "   ");
    counter_.settings.SaveSetting("HALDREN", "Settings", "2차서버", headOffice_->address());

    counter_.start();

    EXPECT_FALSE(counter_.isWindowOpen());
    EXPECT_EQ(counter_.settings.GetSetting("HALDREN", "Settings", "1차서버"),
              headOffice_->address());
    std::filesystem::rename(counter_.folder / "포스/food.MDB", counter_.folder / "food.MDB");
    EXPECT_THAT(kinds(), ElementsAre("0101|밥류|1|0"));
    // Coming to the front again runs nothing.
    counter_.window->show();
    Q_EMIT qGuiApp->applicationStateChanged(Qt::ApplicationActive);
    QCoreApplication::processEvents();
    EXPECT_TRUE(counter_.isWindowOpen());
    EXPECT_EQ(counter_.text("lbl_MSG"), "기초자료 수신 완료했습니다");
}

} // namespace
} // namespace quillet
