// The two programs as they are started on real machines.

#include "files/Paths.h"
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
    TestHeadOffice chain;
    chain.sql("USE quillet_chain");
    const std::string portFile = files::textOf(counter.folder / "port");

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
    const std::string program = files::textOf(counter.folder / "quillet");
    std::filesystem::copy_file(QUILLET_PROGRAM, files::pathOf(program));
    std::filesystem::create_directories(counter.folder / "config" / "quillet");
    tests::writeFile(
        counter.folder / "config" / "quillet" / "settings.ini",
        "[HALDREN/Settings]\n"
        "1차서버=127.0.0.1:" +
            port + "개체명=quorin.data\n가맹점=1000\nDB서버=" + TestHeadOffice::databaseServer() +
            "\nDBName=quillet_chain\nDBUser=" + TestHeadOffice::databaseUser() + "\n");
    QProcess window;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("XDG_CONFIG_HOME", q(files::textOf(counter.folder / "config")));
    environment.insert("QT_QPA_PLATFORM", "offscreen");
    window.setProcessEnvironment(environment);
    window.start(q(program), {});
    ASSERT_TRUE(window.waitForFinished(60'000)) << "the window did not close by itself";
    EXPECT_EQ(window.exitCode(), 0) << window.readAllStandardError().toStdString();
    EXPECT_EQ(counter.downloadLog(), "no file");

    // Counted at the head office by queries of another make than the receivers'. The lengths of
    // texts are there to see that none was cut on the way.
    struct Case {
        const char* stored;
        const char* sent;
    };
    const Case cases[] = {
        {"SELECT COUNT(*) FROM KIND",
         "SELECT COUNT(*) FROM (SELECT KD_ID FROM KIND WHERE COALESCE(KD_CKGU,'A402') = 'A402' AND "
         "KD_CKSD = 'Y' UNION ALL SELECT KD_ID FROM KIND WHERE COALESCE(KD_CKSD,'Y') = 'Y' AND "
         "COALESCE(KD_CKGU,'A420') = 'A420' AND KD_LVL = 1 AND KD_ID NOT LIKE '999%') AS shown"},
        {"SELECT COUNT(*)||'/'||SUM(LENGTH(PR_NAME)) FROM PR",
         "SELECT CONCAT(COUNT(*),'/',SUM(CHAR_LENGTH(PR_NAME))) FROM PR LEFT JOIN KIND USING (KD_ID) "
         "WHERE PR_END <> '2' AND COALESCE(KD_CKSD,'Y') = 'Y' AND KD_ID <> 0 AND "
         "(COALESCE(KD_CKGU,'A402') = 'A402' OR KD_CKGU = 'A420' AND KD_LVL = 1 AND "
         "KD_ID NOT LIKE '999%')"},
        {"SELECT COUNT(*)||'/'||SUM(LENGTH(TRIM(CT_NAME)||TRIM(CT_ADDR1)||TRIM(CT_MEMO))) FROM CT",
         "SELECT CONCAT(COUNT(*),'/',SUM(CHAR_LENGTH(CONCAT_WS('',CT_NAME,TRIM(CT_ADDR1),CT_MSG)))) "
         "FROM CT WHERE CT_DATE IS NOT NULL"},
        {"SELECT COUNT(*)||'/'||SUM(LENGTH(USR_NAME||USR_ADDR1||USR_ADDR2||USR_DUTY)) FROM USR",
         "SELECT CONCAT(COUNT(*),'/',SUM(CHAR_LENGTH(CONCAT_WS('',ST_NAME,ST_ADDR1,ST_ADDR2,"
         "ST_DUTY)))) FROM ST WHERE RCT_CODE = '1000' AND ST_ASPLVL > '0'"},
        {"SELECT COUNT(*)||'/'||SUM(LENGTH(PROP_NAME)) FROM PROP",
         "SELECT CONCAT(COUNT(*),'/',SUM(CHAR_LENGTH(PROP_NAME))) FROM PROP"},
        {"SELECT COUNT(*)||'/'||SUM(LENGTH(FN_NAME||FN_SNAME)) FROM FN",
         "SELECT CONCAT(COUNT(*),'/',SUM(CHAR_LENGTH(CONCAT_WS('',FN_NAME,FN_SNAME)))) FROM FN WHERE FN_DATE > 0"},
        {"SELECT COUNT(*) FROM BAS",
         "SELECT COUNT(*) FROM (SELECT BAS_CODE FROM BAS WHERE BAS_DATE > 0 UNION SELECT "
         "BAS_CODE FROM RCTBAS WHERE RCT_CODE = '1000' AND BAS_DATE > 0) AS both_tables"},
        {"SELECT CF_CONTENTS FROM CF WHERE CF_PART = '회사' AND CF_IDX = 4",
         "SELECT CONCAT(RCT_SADDR1,' ',RCT_SADDR2) FROM RCT WHERE RCT_CODE = '1000'"},
    };
    for (const auto& [stored, sent] : cases)
        EXPECT_THAT(counter.rows(stored), testing::ElementsAre(chain.value(sent))) << stored;
    server.terminate();
    EXPECT_TRUE(server.waitForFinished(30'000));
    EXPECT_EQ(server.exitCode(), 0);
    EXPECT_THAT(server.readAllStandardOutput().toStdString(),
                testing::Not(testing::HasSubstr("mq5307")));
}

} // namespace
} // namespace quillet
