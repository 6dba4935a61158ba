// What a store keeps when something fails: the whole program against real failures.

#include "files/Paths.h"
#include "tests/app/ReceiveFixture.h"
#include "tests/support/ScriptedServer.h"

#include <QElapsedTimer>
#include <QTest>
#include <QTimer>
#include <sqlite3.h>

namespace quillet {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// Another program on the store's file.
class PointOfSale {
public:
    explicit PointOfSale(const std::string& file) { sqlite3_open(file.c_str(), &handle_); }
    ~PointOfSale() { sqlite3_close(handle_); }
    PointOfSale(const PointOfSale&) = delete;
    PointOfSale& operator=(const PointOfSale&) = delete;
    int run(const char* sql) { return sqlite3_exec(handle_, sql, nullptr, nullptr, nullptr); }

private:
    sqlite3* handle_ = nullptr;
};

class SafetyTest : public tests::ReceiveFixture {
protected:
    void SetUp() override {
        ReceiveFixture::SetUp();
        if (headOffice_ == nullptr)
            return;
        category("101000000000000", "밥류", "'Y'", "'A402'");
        counter_.store("INSERT INTO KIND VALUES ('0101','옛 이름',7,1),('0900','우리 것',8,1)");
        counter_.store("INSERT INTO PR (PR_CODE,PR_NAME,PR_VISIBLE) VALUES ('P1','국밥',1)");
    }

    std::vector<std::string> menu() const {
        return counter_.rows("SELECT KIND_CODE,KIND_ORDER,KIND_VISIBLE FROM KIND UNION ALL "
                             "SELECT PR_CODE,PR_NAME,PR_VISIBLE FROM PR");
    }
    static auto wholeMenu() { return ElementsAre("0101|7|1", "0900|8|1", "P1|국밥|1"); }

    bool isThere(const char* name) const { return std::filesystem::exists(counter_.folder / name); }

    /// Opens the window and closes it while it waits.
    void closingEndsItAtOnce() {
        counter_.open();
        QTimer::singleShot(500, counter_.window.get(), [&] { counter_.window->close(); });
        QElapsedTimer clock;
        clock.start();
        counter_.waitForEndOfRun();
        EXPECT_FALSE(counter_.isWindowOpen());
        EXPECT_LT(clock.elapsed(), 5000);
        EXPECT_EQ(counter_.downloadLog(), "no file") << "nothing has failed";
    }

    /// What the window's status line said at a moment.
    std::string statusAfter(int milliseconds) {
        QTest::qWait(milliseconds);
        return counter_.text("lbl_MSG");
    }
};

TEST_F(SafetyTest, StampsThatCannotBeReadDeleteNothingAndAreReadAgain) {
    receivedBefore();
    counter_.store("ALTER TABLE UPD RENAME COLUMN UPD_FN TO ELSEWHERE");
    counter_.start();
    EXPECT_TRUE(counter_.isWindowOpen());
    EXPECT_EQ(counter_.text("lbl_MSG"), "기초자료 수신 실패했습니다");
    EXPECT_THAT(counter_.downloadLog(), HasSubstr("stamps cannot be read"));
    EXPECT_THAT(menu(), wholeMenu());

    counter_.store("ALTER TABLE UPD RENAME COLUMN ELSEWHERE TO UPD_FN");
    counter_.click("Cmd1(0)");
    counter_.waitForEndOfRun();
    EXPECT_FALSE(counter_.isWindowOpen());
    EXPECT_THAT(menu(), wholeMenu());
    EXPECT_THAT(counter_.rows("SELECT COUNT(*) FROM UPD"), ElementsAre("1"));
}

TEST_F(SafetyTest, AnotherProgramsLockIsWaitedForInALivingWindow) {
    receivedBefore();
    PointOfSale pointOfSale(counter_.storeFile());
    ASSERT_EQ(pointOfSale.run("BEGIN EXCLUSIVE"), SQLITE_OK);
    counter_.open();
    std::string meanwhile;
    QTimer::singleShot(1500, counter_.window.get(), [&] {
        meanwhile = counter_.text("lbl_MSG");
        pointOfSale.run("ROLLBACK");
    });
    counter_.waitForEndOfRun();
    EXPECT_EQ(meanwhile, "다른 프로그램이 저장소를 쓰고 있어 기다립니다");
    EXPECT_EQ(counter_.text("lbl_MSG"), "기초자료 수신 완료했습니다");
    EXPECT_THAT(menu(), wholeMenu());

    // Nothing is written yet: whoever does not want to wait closes the window.
    ASSERT_EQ(pointOfSale.run("BEGIN EXCLUSIVE"), SQLITE_OK);
    closingEndsItAtOnce();
}

TEST_F(SafetyTest, TheStoresOwnSettingsAreOwedUntilTheyAreWritten) {
    sql("INSERT INTO RCTBAS (RCT_CODE,BAS_CODE,BAS_OP1,BAS_DATE) VALUES "
        "('1000','ZO55','1',NOW() - INTERVAL 1 DAY)");
    const auto own = [&] {
        return counter_.rows("SELECT BAS_CODE,BS_M1 FROM BAS WHERE BAS_CODE = 'ZO55'");
    };
    // The last query fails: the stamp has moved past the settings by then.
    sql("RENAME TABLE RCTBAS TO ELSEWHERE");
    counter_.start();
    EXPECT_FALSE(counter_.isWindowOpen());
    EXPECT_THAT(counter_.downloadLog(), HasSubstr("가맹점별설정 자료수신"));
    EXPECT_TRUE(isThere("food.settings-owed.txt"));
    sql("RENAME TABLE ELSEWHERE TO RCTBAS");
    // They arrive, and the store does not take them.
    counter_.store("CREATE TRIGGER NO BEFORE INSERT ON BAS BEGIN SELECT RAISE(ABORT,'no'); END");
    counter_.start();
    EXPECT_THAT(own(), IsEmpty());
    // The note is damaged: more is asked for, not less.
    tests::writeFile(counter_.folder / "food.settings-owed.txt", std::string(40, '\0'));
    counter_.store("DROP TRIGGER NO");
    counter_.start();
    EXPECT_THAT(own(), ElementsAre("ZO55 |1 "));
    EXPECT_FALSE(isThere("food.settings-owed.txt"));

    // A batch that is rolled back owes nothing.
    counter_.store("CREATE TRIGGER NO BEFORE UPDATE ON UPD BEGIN SELECT RAISE(ABORT,'no'); END");
    counter_.start();
    EXPECT_TRUE(counter_.isWindowOpen());
    EXPECT_FALSE(isThere("food.settings-owed.txt"));
    // Where they cannot be noted, nothing is committed.
    counter_.store("DROP TRIGGER NO");
    const auto stamps = counter_.rows("SELECT * FROM UPD");
    std::filesystem::create_directory(counter_.folder / "food.settings-owed.txt.new");
    clearDownloadLog();
    counter_.start();
    EXPECT_EQ(counter_.text("lbl_MSG"), "기초자료 수신 실패했습니다");
    EXPECT_THAT(counter_.downloadLog(), HasSubstr("food.settings-owed.txt"));
    EXPECT_EQ(counter_.rows("SELECT * FROM UPD"), stamps);
}

TEST_F(SafetyTest, ASweepThatFailsIsInTheLog) {
    receivedBefore();
    counter_.store("INSERT INTO PRC (PR_CODE,PRC_CODE,PRC_RCV) VALUES ('P1','P2','9');"
                   "CREATE TRIGGER NO BEFORE DELETE ON PRC BEGIN SELECT RAISE(ABORT,'no'); END");
    counter_.start();
    EXPECT_FALSE(counter_.isWindowOpen()) << "the base data has been received";
    EXPECT_THAT(counter_.downloadLog(), HasSubstr("미수신 자료 정리"));
}

TEST_F(SafetyTest, AStoreThatIsReplacedDuringTheBatchIsNoSuccess) {
    receivedBefore();
    for (int i = 200; i < 220; ++i)
        category(std::to_string(i) + "000000000000", "분류", "'Y'", "'A402'");
    const std::filesystem::path copy = counter_.folder / "copy.MDB";
    std::filesystem::copy_file(counter_.storeFile(), copy);
    counter_.afterStatement = [&, n = 0]() mutable {
        if (++n == 5)
            std::filesystem::rename(copy, counter_.storeFile());
    };
    counter_.start();
    EXPECT_TRUE(counter_.isWindowOpen());
    EXPECT_EQ(counter_.text("lbl_MSG"), "기초자료 수신 실패했습니다");
    EXPECT_THAT(counter_.dailyLog(), HasSubstr("replaced"));
    EXPECT_THAT(counter_.rows("SELECT UPD_PR FROM UPD"), ElementsAre("2026-01-01 00:00:00"));
    EXPECT_TRUE(isThere("food.settings-owed.txt")) << "who knows what became of the commit";
    counter_.click("Cmd1(0)"); // opens the one that is there now
    counter_.waitForEndOfRun();
    EXPECT_FALSE(counter_.isWindowOpen());
    EXPECT_THAT(counter_.rows("SELECT COUNT(*) FROM KIND"), ElementsAre("22"));
    EXPECT_FALSE(isThere("food.settings-owed.txt"));
}

TEST_F(SafetyTest, OneWindowForOneStoreWhateverItsName) {
    // What an old version, or a crash, has left.
    tests::writeFile(counter_.folder / "quillet.lock", "4711\nquillet\nother-machine\n");
    sql("RENAME TABLE KIND TO ELSEWHERE");
    counter_.start();
    ASSERT_EQ(counter_.text("lbl_MSG"), "분류자료 수신 실패했습니다") << "not locked out";
    for (const bool hardLink : {true, false}) {
        const auto other = counter_.folder / (hardLink ? "hard" : "symbolic");
        std::filesystem::create_directory(other);
        if (hardLink)
            std::filesystem::create_hard_link(counter_.storeFile(), other / "food.MDB");
        else
            std::filesystem::create_symlink(counter_.storeFile(), other / "food.MDB");
        app::frm_Quillet second({counter_.settings, other, "1.0.0"});
        second.show();
        QTest::qWait(100);
        EXPECT_EQ(second.findChild<QLabel*>(QStringLiteral("lbl_MSG"))->text(),
                  QStringLiteral("다른 창에서 이미 기초자료를 수신하고 있습니다"));
    }
    counter_.window->close();
}

TEST_F(SafetyTest, ClosingEndsACallAtOnceAndAnEmptiedMenuIsFilledFirst) {
    receivedBefore();
    // A head office that never answers: to the version report, then to the first query.
    for (const char* reported : {"", "1.0.0"}) {
        const tests::ScriptedServer silent([](tests::tcp::socket& socket) {
            tests::receiveRaw(socket); // until the other end closes
        });
        counter_.settings.SaveSetting("HALDREN", "Settings", "1차서버", silent.address());
        counter_.settings.SaveSetting("ZELMARO_II", "DBLOC", "RCVVERSION", reported);
        closingEndsItAtOnce();
        EXPECT_THAT(menu(), wholeMenu());
        EXPECT_FALSE(isThere("food.settings-owed.txt"));
    }

    counter_.use(*headOffice_);
    counter_.store("DELETE FROM UPD"); // never received: the menu is emptied, then filled
    counter_.beforeQuery = [&](const std::string& query) {
        if (query.find("CTMEM") == query.npos)
            return;
        EXPECT_THAT(menu(), IsEmpty());
        counter_.window->close();
        EXPECT_TRUE(counter_.isWindowOpen());
        EXPECT_EQ(statusAfter(50), "수신이 끝나면 창을 닫습니다");
    };
    counter_.start();
    EXPECT_FALSE(counter_.isWindowOpen());
    EXPECT_THAT(menu(), ElementsAre("0101|1|0"));
}

TEST_F(SafetyTest, AnOldMenuThatCannotBeDeletedGoesWithTheNextReceive) {
    receivedBefore();
    counter_.store("UPDATE UPD SET UPD_PR = ''");
    counter_.store("CREATE TRIGGER keep BEFORE DELETE ON PR BEGIN SELECT RAISE(ABORT,'no'); END");
    counter_.start();
    EXPECT_FALSE(counter_.isWindowOpen());
    EXPECT_THAT(counter_.downloadLog(), HasSubstr("품목분류 자료수신"));
    EXPECT_THAT(menu(), ElementsAre("0101|7|1", "0900|8|1", "P1|국밥|1"));
    EXPECT_THAT(counter_.rows("SELECT UPD_PR = '', UPD_CT > '' FROM UPD"), ElementsAre("1|1"));
    counter_.store("DROP TRIGGER keep");
    counter_.start();
    EXPECT_THAT(menu(), ElementsAre("0101|1|0"));
    EXPECT_THAT(counter_.rows("SELECT UPD_PR > '' FROM UPD"), ElementsAre("1"));
}

TEST_F(SafetyTest, ASettingsFileThatCannotBeReadIsLeftAlone) {
    const auto file = counter_.folder / "settings.ini";
    const std::string good = tests::readFile(file);
    const std::string bad = "[HALDREN/Settings]\n1\xC2\xF7\xBC\xAD\xB9\xF6=office\n"; // CP949
    tests::writeFile(file, bad);
    counter_.start();
    EXPECT_TRUE(counter_.isWindowOpen());
    EXPECT_EQ(counter_.text("lbl_MSG"), "설정을 읽을 수 없습니다");
    EXPECT_THAT(counter_.downloadLog(), HasSubstr("not in UTF-8"));
    EXPECT_EQ(tests::readFile(file), bad);
    tests::writeFile(file, good);
    counter_.click("Cmd1(0)");
    counter_.waitForEndOfRun();
    EXPECT_FALSE(counter_.isWindowOpen());
}

} // namespace
} // namespace quillet
