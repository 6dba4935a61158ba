// The two programs as they are started on real machines.

#include "db/Paths.h"
#include "tests/support/Counter.h"
#include "tests/support/TestHeadOffice.h"

#include <QElapsedTimer>
#include <QProcess>
#include <gmock/gmock.h>

namespace quillet {
namespace {

using tests::Counter;
using tests::TestHeadOffice;

QString q(const std::string& text) {
    return QString::fromStdString(text);
}

TEST(ProcessTest, TheProgramsReceiveTheSampleChain) {
    if (!TestHeadOffice::isAvailable())
        GTEST_SKIP() << "no head office database (scripts/test starts one)";
    const Counter counter;
    const std::string portFile = db::textOf(counter.folder / "port");

    QProcess server;
    server.start(QStringLiteral(QUILLET_HEADOFFICE_PROGRAM),
                 {"--listen", "127.0.0.1:0", "--port-file", q(portFile)});
    QElapsedTimer patience;
    patience.start();
    while (tests::readFile(portFile).find('\n') == std::string::npos &&
           !patience.hasExpired(30'000))
        server.waitForReadyRead(50);
    const std::string port = tests::readFile(portFile);
    ASSERT_FALSE(port.empty()) << server.readAllStandardError().toStdString();

    // The program looks for store and logs beside itself, so it gets a folder of its own.
    const std::string program = db::textOf(counter.folder / "quillet");
    std::filesystem::copy_file(QUILLET_PROGRAM, db::pathOf(program));
    std::filesystem::create_directories(counter.folder / "config" / "quillet");
    tests::writeFile(counter.folder / "config" / "quillet" / "settings.ini",
                     "[HALDREN/Settings]\n"
                     "1차서버=127.0.0.1:" +
                         port + "개체명=quorin.data\nDB서버=" + TestHeadOffice::databaseServer() +
                         "\nDBName=quillet_chain\nDBUser=" + TestHeadOffice::databaseUser() + "\n");
    QProcess window;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("XDG_CONFIG_HOME", q(db::textOf(counter.folder / "config")));
    environment.insert("QT_QPA_PLATFORM", "offscreen");
    window.setProcessEnvironment(environment);
    window.start(q(program), {});
    ASSERT_TRUE(window.waitForFinished(60'000)) << "the window did not close by itself";
    EXPECT_EQ(window.exitCode(), 0) << window.readAllStandardError().toStdString();
    EXPECT_EQ(counter.downloadLog(), "no file");

    const auto received = counter.rows("SELECT COUNT(*) FROM KIND");
    TestHeadOffice reference; // only for its connection
    EXPECT_THAT(received,
                testing::ElementsAre(reference.value(
                    "SELECT COUNT(*) FROM (SELECT KD_ID FROM quillet_chain.KIND WHERE "
                    "COALESCE(KD_CKGU,'A402') = 'A402' AND KD_CKSD = 'Y' UNION ALL "
                    "SELECT KD_ID FROM quillet_chain.KIND WHERE COALESCE(KD_CKSD,'Y') = 'Y' AND "
                    "COALESCE(KD_CKGU,'A420') = 'A420' AND KD_LVL = 1 AND "
                    "KD_ID NOT LIKE '999%') AS shown")));
    server.terminate();
    EXPECT_TRUE(server.waitForFinished(30'000));
    EXPECT_EQ(server.exitCode(), 0);
    EXPECT_THAT(server.readAllStandardOutput().toStdString(),
                testing::Not(testing::HasSubstr("mq5307")));
}

} // namespace
} // namespace quillet
