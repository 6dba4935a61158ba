#include "db/DownloadLog.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

namespace quillet::db {
namespace {

TEST(DownloadLogTest, OneFileASecondAndNoFolderOfItsOwn) {
    const tests::TempFolder folder;
    const DownloadLog log(folder.path(), [] { return DateTime{2026, 11, 15, 10, 10, 44}; });
    log.write("품목분류 자료수신", "", 3021, "lost");
    EXPECT_FALSE(std::filesystem::exists(folder / "log"));

    std::filesystem::create_directory(folder / "log");
    log.write("품목분류 자료수신", " UPDATE UPD ", 3021, "first");
    log.write("품목분류 자료수신", "", -2147467259, "둘째");
    EXPECT_EQ(tests::readOnlyFileIn(folder / "log"),
              "품목분류 자료수신\r\n\r\n-2147467259\r\n둘째\r\n");
    EXPECT_TRUE(std::filesystem::exists(folder / "log" / "Down261115101044.txt"));
}

} // namespace
} // namespace quillet::db
