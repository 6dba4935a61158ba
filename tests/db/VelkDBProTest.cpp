#include "db/VelkDBPro.h"

#include "db/store/EmptyStore.h"
#include "files/Paths.h"
#include "tests/support/TempFolder.h"

#include <gmock/gmock.h>
#include <sqlite3.h>

namespace quillet::db {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using tests::TempFolder;

/// Writes down what a batch does to the window, in order.
struct Screen {
    struct Bar : ProgressBar {
        Bar(Screen& screen, std::string name) : screen_(screen), name_(std::move(name)) {}
        void SetMin(std::int32_t) override {}
        void SetMax(std::int32_t max) override { screen_.log(name_ + ".Max", max); }
        std::int32_t Value() const override { return value_; }
        void SetValue(std::int32_t value) override { screen_.log(name_, value_ = value); }
        Screen& screen_;
        std::string name_;
        std::int32_t value_ = 0;
    };
    struct Text : Label {
        Text(Screen& screen, std::string name) : screen_(screen), name_(std::move(name)) {}
        std::string Caption() const override { return caption_; }
        void SetCaption(const std::string& caption) override {
            screen_.steps.push_back(name_ + "=" + (caption_ = caption));
        }
        Screen& screen_;
        std::string name_, caption_;
    };

    void log(const std::string& what, std::int32_t value) {
        steps.push_back(what + "=" + std::to_string(value));
    }

    std::vector<std::string> steps;
    Bar PBarT{*this, "PBarT"}, PBar1{*this, "PBar1"};
    Text LBLT{*this, "LBLT"}, LBL1{*this, "LBL1"}, LBL2{*this, "LBL2"}, LBL3{*this, "LBL3"};
};

class VelkDBProTest : public testing::Test {
protected:
    VelkDBProTest() {
        createEmptyStore(folder_ / "food.MDB");
        store_.DBOpen(connectionString("food.MDB"));
    }

    std::string connectionString(const std::string& file) const {
        return "PROVIDER=MSDataShape;Driver={Microsoft Access Driver (*.mdb)};Dbq=" + file +
               ";DefaultDir=" + files::textOf(folder_.path()) + ";Uid=Admin;pwd=tavro5531";
    }

    void putData(const StatementArray& SQL, const GroupCounts& CNT) {
        store_.PUT_DATA(SQL, 1, screen_.PBarT, screen_.PBar1, screen_.LBLT, screen_.LBL1,
                        screen_.LBL2, screen_.LBL3, CNT);
    }

    /// PROP as "code name|code name|".
    std::string options() {
        TextTable FD;
        std::int32_t FDROW = 0, FDCOL = 0;
        store_.GET_DATA(" SELECT PROP_CODE,PROP_NAME FROM PROP ORDER BY PROP_CODE ", FD, FDROW,
                        FDCOL);
        std::string result;
        for (std::size_t row = 1; row < FD.size(); ++row)
            result += FD[row][0] + " " + FD[row][1] + "|";
        return result;
    }

    std::string dailyLog() const { return tests::readOnlyFileIn(folder_ / "ZELMARO_LOG"); }

    static std::string insert(const std::string& code, const std::string& name = "x") {
        return " INSERT INTO PROP (PROP_CODE,PROP_NAME) VALUES ('" + code + "','" + name + "') ";
    }

    TempFolder folder_;
    Screen screen_;
    VelkDBPro store_{
        logs::DailyLog(folder_.path(), [] { return data::DateTime{2026, 11, 15, 10, 10, 44}; }),
        [this] { screen_.steps.emplace_back("yield"); }};
};

TEST_F(VelkDBProTest, ShowsGroupsBarsAndCounters) {
    ASSERT_EQ(store_.Status(), 1);
    // Menu 2, members 0, users 1, business information 2: the last statement shows nothing.
    putData({"", insert("1"), insert("2"), insert("3"), insert("4"), insert("5")},
            {2, 0, 1, 0, 0, 2});
    EXPECT_EQ(store_.Status(), 1);
    EXPECT_THAT(screen_.steps,
                ElementsAre("LBLT=0", "LBL3=품목 정보 수신 중", "LBL1=0", "LBL2=2", "PBar1=0",
                            "PBar1.Max=2", "PBar1=1", "PBarT=1", "yield", "LBL1=1", "LBLT=1", // 1
                            "PBar1=2", "PBarT=2", "yield", "LBL1=2", "LBLT=2",                // 2
                            "LBL3=사용자 정보 수신 중", "LBL1=0", "LBL2=1", "PBar1=0",
                            "PBar1.Max=1", "PBar1=1", "PBarT=3", "yield", "LBL1=1", "LBLT=3", // 3
                            "LBL3=사업자 정보 수신 중", "LBL1=0", "LBL2=2", "PBar1=0",
                            "PBar1.Max=2", "PBar1=1", "yield", "LBL1=1",
                            "LBLT=4")); // 4: outside the overall bar
    EXPECT_EQ(options(), "1 x|2 x|3 x|4 x|5 x|");
}

TEST_F(VelkDBProTest, RollsAFailedBatchBackAndLogsItsStatement) {
    screen_.LBLT.caption_ = "7";
    putData({"", insert("1"), insert("2", "할매's"), insert("3")}, {0, 3, 0, 0, 0, 0});
    EXPECT_EQ(store_.Status(), 0);
    EXPECT_THAT(store_.errorText(), testing::StartsWith("-2147217900 : "));
    EXPECT_EQ(screen_.LBLT.caption_, "8") << "only the menu group starts the overall count";
    EXPECT_EQ(options(), "");

    putData({"", insert("1"), insert("1")}, {2, 0, 0, 0, 0, 0});
    EXPECT_THAT(store_.errorText(), testing::StartsWith("-2147217873 : ")) << "key twice";
    const std::string log = dailyLog();
    EXPECT_TRUE(std::filesystem::exists(folder_ / "ZELMARO_LOG" / "20261115.TXT"));
    EXPECT_THAT(log, testing::StartsWith("[2026-11-15 10:10:44]\r\n"));
    EXPECT_THAT(log, HasSubstr("\r\n수신에러\r\n" + insert("2", "할매's") + "\r\n[2026-11-15"))
        << "no blank lines, and the second entry is appended";
    EXPECT_THAT(log, testing::EndsWith("\r\n수신에러\r\n" + insert("1") + "\r\n"));
}

TEST_F(VelkDBProTest, StaysSafeWhereTheLogFolderCannotBeMadeAndWhereCountsOverflow) {
    std::filesystem::create_directory(folder_ / "gone");
    VelkDBPro store(logs::DailyLog(folder_ / "gone"), [] {});
    store.DBOpen(connectionString("food.MDB"));
    std::filesystem::remove(folder_ / "gone");
    store.PUT_DATA({"", insert("1"), "nonsense"}, 1, screen_.PBarT, screen_.PBar1, screen_.LBLT,
                   screen_.LBL1, screen_.LBL2, screen_.LBL3, {2, 0, 0, 0, 0, 0});
    EXPECT_EQ(store.Status(), 0);
    EXPECT_EQ(options(), "");

    putData({"", insert("1"), insert("2")}, {2'000'000'000, 2'000'000'000, 0, 0, 0, 0});
    EXPECT_EQ(store_.Status(), 0);
    EXPECT_EQ(store_.errorText(), "6 : Overflow");
    EXPECT_EQ(options(), "");
}

TEST_F(VelkDBProTest, BatchesWithoutDisplay) {
    store_.PUT_DATA_DEL({""});
    EXPECT_EQ(store_.Status(), 1);
    store_.PUT_DATA_DEL({"", insert("1"), insert("1")});
    EXPECT_EQ(store_.Status(), 0);
    EXPECT_EQ(options(), "");
    EXPECT_EQ(dailyLog(), "no folder") << "only the batch with a display writes there";

    std::string unread;
    store_.PUT_DATA_TABLE(
        {"", insert("1"), "ALTER TABLE PRC ADD COLUMN PRC_RCV TEXT(1) ", insert("1"), insert("2")},
        0, unread);
    EXPECT_EQ(store_.Status(), 1);
    EXPECT_EQ(store_.errorText(), "");
    EXPECT_EQ(options(), "1 x|2 x|");
}

TEST_F(VelkDBProTest, ACommitThatFailsLeavesTheConnectionUsable) {
    sqlite3* pointOfSale = nullptr; // reads, so that nothing can be committed
    sqlite3_open(files::textOf(folder_ / "food.MDB").c_str(), &pointOfSale);
    sqlite3_exec(pointOfSale, "BEGIN; SELECT * FROM PROP", nullptr, nullptr, nullptr);
    std::string unread;
    store_.PUT_DATA_TABLE({"", insert("1")}, 0, unread);
    EXPECT_EQ(store_.Status(), 1) << "tolerant even of this";
    store_.PUT_DATA_DEL({"", insert("2")});
    EXPECT_EQ(store_.Status(), 0);
    sqlite3_close(pointOfSale);

    EXPECT_EQ(options(), "");
    store_.PUT_DATA_DEL({"", insert("3")});
    EXPECT_EQ(store_.Status(), 1);
    EXPECT_EQ(options(), "3 x|");
}

TEST_F(VelkDBProTest, ErrorTextsOfReadsPileUpUntilAnOperationCompletes) {
    TextTable FD{{"kept"}};
    std::int32_t FDROW = 7, FDCOL = 8;
    store_.GET_DATA(" SELECT X FROM NOWHERE ", FD, FDROW, FDCOL);
    const std::string first = store_.errorText();
    EXPECT_THAT(first, HasSubstr("NOWHERE"));
    EXPECT_THAT(first, testing::EndsWith("[-2147217865]"));
    EXPECT_EQ(FDROW, 7);
    EXPECT_EQ(FD[0][0], "kept");

    EXPECT_FALSE(store_.GET_RSS(" SELECT NO_COLUMN FROM PROP ").IsOpen());
    const std::string second = store_.errorText();
    EXPECT_THAT(second, testing::StartsWith(first + "\r\n"));
    EXPECT_TRUE(store_.GET_RSS(" SELECT PROP_CODE FROM PROP ").IsOpen());
    EXPECT_EQ(store_.Status(), 1);
    EXPECT_EQ(store_.errorText(), second) << "a snapshot that worked leaves the text";

    store_.PUT_DATA_DEL({"", insert("1", "한글"), " INSERT INTO PROP (PROP_CODE) VALUES ('2') "});
    store_.GET_DATA(" SELECT PROP_CODE,PROP_NAME FROM PROP ORDER BY PROP_CODE", FD, FDROW, FDCOL);
    EXPECT_EQ(store_.errorText(), "");
    EXPECT_EQ(FDROW, 2);
    EXPECT_EQ(FDCOL, 2);
    EXPECT_THAT(FD, ElementsAre(ElementsAre("PROP_CODE", "PROP_NAME"), ElementsAre("1", "한글"),
                                ElementsAre("2", "")));
    store_.GET_DATA(" SELECT PROP_CODE FROM PROP WHERE 1 = 0 ", FD, FDROW, FDCOL);
    EXPECT_EQ(FDROW, 0);
    EXPECT_EQ(FDCOL, 0);
    EXPECT_THAT(FD, ElementsAre(ElementsAre("")));
}

TEST_F(VelkDBProTest, AStoreThatDidNotOpenFailsEveryOperation) {
    VelkDBPro store(logs::DailyLog(folder_.path()), [] {});
    store.DBOpen(connectionString("missing.MDB"));
    EXPECT_EQ(store.Status(), 0);
    EXPECT_THAT(store.errorText(), HasSubstr("missing.MDB"));
    EXPECT_FALSE(std::filesystem::exists(folder_ / "missing.MDB")) << "never created";
    EXPECT_FALSE(store.GET_RSS(" SELECT PROP_CODE FROM PROP ").IsOpen());
    EXPECT_EQ(store.Status(), 0);
    store.PUT_DATA_DEL({"", insert("1")});
    EXPECT_EQ(store.Status(), 0);
    EXPECT_THAT(store.errorText(), testing::StartsWith("3709 : "));
}

} // namespace
} // namespace quillet::db
