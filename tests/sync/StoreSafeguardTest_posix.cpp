// An engine that breaks its transactions, behind a real driver manager.

#include "db/store/EmptyStore.h"
#include "files/Paths.h"
#include "sync/StoreSafeguard.h"
#include "tests/support/TempFolder.h"

#include <gmock/gmock.h>

#include <fstream>
#include <memory>
#include <stdlib.h>

namespace quillet::sync {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using tests::readFile;

struct NoSettings : Settings {
    std::string GetSetting(const std::string&, const std::string&, const std::string&,
                           const std::string& defaultValue) const override {
        return defaultValue;
    }
    void SaveSetting(const std::string&, const std::string&, const std::string&,
                     const std::string&) override {}
};

struct NoBar : db::ProgressBar {
    void SetMin(std::int32_t) override {}
    void SetMax(std::int32_t) override {}
    std::int32_t Value() const override { return 0; }
    void SetValue(std::int32_t) override {}
};

struct NoLabel : db::Label {
    std::string Caption() const override { return "0"; }
    void SetCaption(const std::string&) override {}
};

/// A counter whose store is behind the breaking driver.
class StoreSafeguardTest : public testing::Test {
protected:
    void SetUp() override {
        db::createEmptyStore(file_);
        std::filesystem::create_directory(folder_ / "log");
        start("");
        run_->statements = {"", "INSERT INTO UPD VALUES ('2026-01-01','2026-01-01','','','')",
                            "INSERT INTO PROP VALUES ('01','ice')"};
        EXPECT_TRUE(receive());
        start("");
    }

    void TearDown() override { unsetenv("QUILLET_BREAK"); }

    /// The program starts anew.
    void start(const char* breaks) {
        setenv("QUILLET_BREAK", breaks, 1);
        run_.reset();
        store_ = std::make_unique<db::VelkDBPro>(logs::DailyLog(folder_.path()), [] {});
        store_->DBOpen("Driver=" QUILLET_BREAKING_DRIVER ";Dbq=food.MDB;DefaultDir=" +
                       files::textOf(folder_.path()) + ";Database=" + files::textOf(file_));
        ASSERT_EQ(store_->Status(), 1) << store_->errorText();
        run_ = std::make_unique<sync::Run>(*store_, settings_, logs::DownloadLog(folder_.path()));
        ASSERT_TRUE(ReadStamps(*run_));
        StoreSafeguard(*run_).recoverStamps();
        run_->newStamp = "2026-01-02";
        run_->statements = {"", "UPDATE UPD SET UPD_PR = '2026-01-02',UPD_CT = '2026-01-02'",
                            "UPDATE PROP SET PROP_NAME = 'much ice' WHERE PROP_CODE = '01'",
                            "INSERT INTO PROP VALUES ('02','extra shot')"};
    }

    /// @return whether the store is known to be whole.
    bool receive() {
        NoBar bar;
        NoLabel label;
        if (run_->stampRowExists == false)
            run_->newStamp = "2026-01-01";
        StoreSafeguard safeguard(*run_);
        safeguard.begin();
        beforeBatch_ = {isThere("food.before-receive.MDB"), isThere("food.before-receive.txt")};
        safeguard.expectRows();
        store_->PUT_DATA(run_->statements, 1, bar, bar, label, label, label, label, {});
        const bool committed = store_->Status() == 1;
        const bool whole = safeguard.verify(committed);
        if (committed && whole && settingsArrive_)
            safeguard.confirm();
        return whole;
    }

    bool isThere(const char* name) const { return std::filesystem::exists(folder_ / name); }

    std::vector<std::string> options() {
        db::TextTable FD;
        std::int32_t rows = 0, columns = 0;
        store_->GET_DATA("SELECT PROP_NAME FROM PROP ORDER BY PROP_CODE", FD, rows, columns);
        std::vector<std::string> names;
        for (std::int32_t row = 1; row <= rows; ++row)
            names.push_back(FD[static_cast<std::size_t>(row)][0]);
        return names;
    }

    tests::TempFolder folder_;
    const std::filesystem::path file_ = folder_ / "food.MDB";
    NoSettings settings_;
    std::unique_ptr<db::VelkDBPro> store_;
    std::unique_ptr<sync::Run> run_;
    std::pair<bool, bool> beforeBatch_;
    bool settingsArrive_ = true; ///< what comes after the batch
};

TEST_F(StoreSafeguardTest, NothingStaysOfARunThatIsKnownToBeGood) {
    const std::string before = readFile(file_);
    EXPECT_TRUE(receive());
    EXPECT_EQ(beforeBatch_, std::pair(true, true));
    EXPECT_FALSE(isThere("food.before-receive.MDB"));
    EXPECT_FALSE(isThere("food.before-receive.txt"));
    EXPECT_THAT(options(), ElementsAre("much ice", "extra shot"));

    // The same after an honest roll-back.
    start("");
    run_->statements.push_back("INSERT INTO PROP VALUES ('01','twice')");
    EXPECT_TRUE(receive());
    EXPECT_EQ(store_->Status(), 1) << "of the verification";
    EXPECT_FALSE(isThere("food.before-receive.MDB"));
}

TEST_F(StoreSafeguardTest, HalfATransactionIsFoundAndMendedByTheNextRun) {
    const std::string before = readFile(file_);
    start("commit:3");
    EXPECT_FALSE(receive());
    EXPECT_THAT(options(), ElementsAre("much ice")) << "half of it is there";
    EXPECT_THAT(run_->failure->error, HasSubstr("part of a transaction"));
    EXPECT_EQ(readFile(folder_ / "food.before-receive.MDB"), before) << "byte for byte";

    // It breaks once more; the copy stays the one before the first.
    start("commit:2");
    EXPECT_EQ(run_->stamps[0], "2026-01-01") << "not the one that half a run left";
    EXPECT_TRUE(run_->stampRowExists);
    receive();
    EXPECT_EQ(readFile(folder_ / "food.before-receive.MDB"), before);

    start("");
    EXPECT_EQ(run_->stamps[1], "2026-01-01");
    EXPECT_TRUE(receive());
    EXPECT_THAT(options(), ElementsAre("much ice", "extra shot"));
    EXPECT_FALSE(isThere("food.before-receive.MDB"));
    EXPECT_FALSE(isThere("food.before-receive.txt"));
}

TEST_F(StoreSafeguardTest, ACommitThatLostRowsIsFound) {
    start("drop:1");
    EXPECT_FALSE(receive());
    EXPECT_THAT(run_->failure->error, HasSubstr("UPD"));
    start("drop:3");
    EXPECT_FALSE(receive());
    EXPECT_THAT(run_->failure->error, HasSubstr("PROP has 1 rows after the commit, not 2"));
    EXPECT_THAT(tests::readOnlyFileIn(folder_ / "log"), HasSubstr("저장소 확인"));
}

TEST_F(StoreSafeguardTest, ARunThatNeverEndedCountsAsBroken) {
    StoreSafeguard(*run_).begin();
    store_->PUT_DATA_DEL({"", "UPDATE UPD SET UPD_PR = '2026-01-02'"}); // and the power fails
    start("");
    EXPECT_EQ(run_->stamps[0], "2026-01-01");
    EXPECT_TRUE(receive());
    EXPECT_FALSE(isThere("food.before-receive.txt"));
}

TEST_F(StoreSafeguardTest, ADiskWithoutRoomForACopyStillRepeatsABrokenRun) {
    std::filesystem::create_directory(folder_ / "food.before-receive.tmp");
    start("commit:3");
    EXPECT_FALSE(receive());
    EXPECT_EQ(beforeBatch_, std::pair(false, true));
    EXPECT_THAT(run_->failure->error, Not(HasSubstr("food.before-receive")));
    start("");
    EXPECT_EQ(run_->stamps[0], "2026-01-01");
}

TEST_F(StoreSafeguardTest, ADamagedNoteAsksForEverythingAndDeletesNothing) {
    const auto note = folder_ / "food.before-receive.txt";
    settingsArrive_ = false;
    EXPECT_TRUE(receive());
    ASSERT_TRUE(isThere("food.before-receive.txt")) << "the run has not come to its end";
    const std::string whole = readFile(note);
    start("");
    EXPECT_EQ(run_->stamps[1], "2026-01-01") << "a whole note";

    // Another store is put in its place: older than the note, new, with stamps in a form of its
    // own.
    const std::pair<const char*, const char*> stores[] = {
        {"2025-12-31 10:00:00", "2025-12-31 10:00:00"}, {"", ""}, {"03/02/2026", "2026-01-01"}};
    for (const auto& [stored, asked] : stores) {
        store_->PUT_DATA_DEL({"", "UPDATE UPD SET UPD_CT = '" + std::string(stored) + "'"});
        start("");
        EXPECT_EQ(run_->stamps[1], asked);
    }

    std::vector<std::string> damaged{std::string(90, '\0'), whole + "x", "\r\n\r\n\r\n\r\n\r\n"};
    for (std::size_t size = 0; size < whole.size(); ++size)
        damaged.push_back(whole.substr(0, size));
    for (const std::string& bytes : damaged) {
        tests::writeFile(note, bytes);
        start("");
        EXPECT_THAT(run_->stamps, testing::Each("")) << bytes;
        EXPECT_FALSE(run_->menuNeverReceived) << bytes;
        EXPECT_TRUE(run_->stampRowExists);
    }
}

TEST_F(StoreSafeguardTest, WhatARefusalQuotesStaysInTheLogs) {
    const std::string refused = "INSERT INTO PROP (PROP_CODE,PROP_NAME) VALUES ('02' '4821')";
    store_->PUT_DATA_DEL({"", refused});
    ASSERT_THAT(store_->errorText(), HasSubstr("4821"));
    run_->takeRefusalDown("품목 저장", refused);
    EXPECT_EQ(run_->failure->subject, "PROP  PROP_CODE = '02'");
    EXPECT_THAT(run_->failure->error, Not(HasSubstr("4821")));
    // A later failure of the store says it again.
    data::Recordset closed = store_->GET_RSS("SELECT X FROM NOWHERE");
    run_->fail("품목분류 자료수신", "", data::Error(3704, "closed. " + store_->errorText()));
    EXPECT_THAT(run_->failure->error, testing::AllOf(HasSubstr("NOWHERE"), Not(HasSubstr("4821"))));
    EXPECT_THAT(tests::readOnlyFileIn(folder_ / "log"), HasSubstr("4821"));
}

TEST_F(StoreSafeguardTest, AnEngineMayKeepStampsInItsOwnForm) {
    store_->PUT_DATA_DEL({"", "CREATE TRIGGER OWN_FORM AFTER UPDATE OF UPD_PR ON UPD BEGIN UPDATE "
                              "UPD SET UPD_PR = '02/01/2026', UPD_CT = '02/01/2026'; END"});
    ASSERT_EQ(store_->Status(), 1) << store_->errorText();
    EXPECT_TRUE(receive());
}

} // namespace
} // namespace quillet::sync
