// What happens once, before the first receive.

#include "tests/app/ReceiveFixture.h"

#include <QTest>
#include <QTimer>

namespace quillet {
namespace {

using testing::ElementsAre;

class StartUpTest : public tests::ReceiveFixture {
protected:
    std::string setting(const char* application, const char* section, const char* key) const {
        return counter_.settings.GetSetting(application, section, key);
    }

    std::string reported() const { return setting("ZELMARO_II", "DBLOC", "RCVVERSION"); }
};

TEST_F(StartUpTest, AChangedVersionIsReportedOnce) {
    sql("INSERT INTO POS (RCT_CODE,POS_ID) VALUES ('1000','01'),('1000','02'),('1001','01')");
    const auto versions = [&] {
        return headOffice_->value("SELECT GROUP_CONCAT(RECEIVE_VER,IF(RECEIVE_VER_SDATE > NOW() - "
                                  "INTERVAL 1 HOUR,' now','') ORDER BY RCT_CODE,POS_ID SEPARATOR "
                                  "'|') FROM POS");
    };
    counter_.start();
    EXPECT_EQ(versions(), "1.0.0 now||");
    EXPECT_EQ(reported(), "1.0.0");

    sql("UPDATE POS SET RECEIVE_VER = 'untouched'");
    counter_.start();
    EXPECT_EQ(versions(), "untouched now|untouched|untouched") << "not reported again";

    // Refused: nothing is saved, and the receive goes on.
    counter_.settings.SaveSetting("ZELMARO_II", "DBLOC", "RCVVERSION", "0.9.4");
    sql("RENAME TABLE POS TO ELSEWHERE");
    counter_.start();
    EXPECT_EQ(reported(), "0.9.4");
    EXPECT_FALSE(counter_.isWindowOpen());
    // Unreachable: the same, and the receive says why it fails.
    counter_.settings.SaveSetting("HALDREN", "Settings", "1차서버", "127.0.0.1:1");
    counter_.start();
    EXPECT_EQ(reported(), "0.9.4");
    EXPECT_TRUE(counter_.isWindowOpen());
    // A counter that the head office does not know counts as reported.
    counter_.use(*headOffice_);
    counter_.settings.SaveSetting("HALDREN", "Settings", "카운터", "99");
    sql("RENAME TABLE ELSEWHERE TO POS");
    counter_.start();
    EXPECT_EQ(reported(), "1.0.0");
}

TEST_F(StartUpTest, AWindowThatIsClosedAtOnceReceivesNothing) {
    category("101000000000000", "밥류", "'Y'", "'A402'");
    for (const bool whilePainting : {false, true}) {
        counter_.open();
        if (whilePainting)
            QTimer::singleShot(0, counter_.window.get(), &QWidget::close);
        else
            counter_.window->close();
        QTest::qWait(200);
        EXPECT_FALSE(counter_.isWindowOpen());
        EXPECT_THAT(counter_.rows("SELECT * FROM KIND"), testing::IsEmpty()) << whilePainting;
    }
}

TEST_F(StartUpTest, FlagColumnsAreAddedOnce) {
    const auto columns = [&] {
        return counter_.rows(
            "SELECT m.name, p.type FROM sqlite_schema m, pragma_table_info(m.name) "
            "p WHERE p.name LIKE '%~_RCV' ESCAPE '~' ORDER BY 1");
    };
    const auto all = ElementsAre("PRC|TEXT(1)", "PRO|TEXT(1)", "PRS|TEXT(1)");
    // One is there already and one table is missing: neither stops the others.
    counter_.store("ALTER TABLE PRC DROP COLUMN PRC_RCV; ALTER TABLE PRO RENAME TO ELSEWHERE");
    counter_.start();
    const std::string migrated = setting("외식업", "RCV", "TABLEUPDATE");
    EXPECT_THAT(migrated, testing::ContainsRegex("^20[0-9-]* [0-9:]*$"));
    counter_.store("ALTER TABLE ELSEWHERE RENAME TO PRO");
    EXPECT_THAT(columns(), all);

    counter_.store("ALTER TABLE PRC DROP COLUMN PRC_RCV");
    counter_.start();
    EXPECT_THAT(columns(), ElementsAre("PRO|TEXT(1)", "PRS|TEXT(1)")) << "not tried again";
    EXPECT_EQ(setting("외식업", "RCV", "TABLEUPDATE"), migrated);
    counter_.settings.SaveSetting("외식업", "RCV", "TABLEUPDATE", "");
    counter_.start();
    EXPECT_THAT(columns(), all);
}

} // namespace
} // namespace quillet
