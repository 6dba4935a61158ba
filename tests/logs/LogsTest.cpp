#include "logs/DailyLog.h"
#include "logs/DownloadLog.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

namespace quillet::logs {
namespace {

TEST(DownloadLogTest, OneFileASecondAndNoFolderOfItsOwn) {
    const tests::TempFolder folder;
    const DownloadLog log(folder.path(), [] { return data::DateTime{2026, 11, 15, 10, 10, 44}; });
    log.write("품목분류 자료수신", "", 3021, "lost");
    EXPECT_FALSE(std::filesystem::exists(folder / "log"));

    std::filesystem::create_directory(folder / "log");
    log.write("품목분류 자료수신", " UPDATE UPD ", 3021, "first");
    log.write("품목분류 자료수신", "", -2147467259, "둘째");
    EXPECT_EQ(tests::readOnlyFileIn(folder / "log"),
              "품목분류 자료수신\r\n\r\n-2147467259\r\n둘째\r\n");
    EXPECT_TRUE(std::filesystem::exists(folder / "log" / "Down261115101044.txt"));
}

TEST(LogsTest, BelongToTheirOwnerAlone) {
    using std::filesystem::perms;
    const tests::TempFolder folder;
    const auto clock = [] { return data::DateTime{2026, 11, 15, 10, 10, 44}; };
    const std::filesystem::path daily = folder / "ZELMARO_LOG" / "20261115.TXT";
    const std::filesystem::path download = folder / "log" / "Down261115101044.txt";
    std::filesystem::create_directory(folder / "log");
    for (int entry = 1; entry <= 2; ++entry) {
        DailyLog(folder.path(), clock).write("no", "수신에러", " UPDATE USR ", "", "");
        DownloadLog(folder.path(), clock).write("사용자 자료수신", " UPDATE USR ", 94, "no");
        for (const auto& file : {daily, download}) {
            EXPECT_EQ(std::filesystem::status(file).permissions(),
                      perms::owner_read | perms::owner_write)
                << file << entry;
            std::filesystem::permissions(file, perms::all); // as one that was there before
        }
    }
    const std::string once = "[2026-11-15 10:10:44]\r\nno\r\n수신에러\r\n UPDATE USR \r\n";
    EXPECT_EQ(tests::readFile(daily), once + once);

    // What cannot be written is passed over.
    std::filesystem::remove(daily);
    std::filesystem::create_directory(daily);
    DailyLog(folder.path(), clock).write("no", "수신에러", "", "", "");
}

} // namespace
} // namespace quillet::logs
