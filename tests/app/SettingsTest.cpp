#include "app/ConnectionStrings.h"
#include "app/IniSettings.h"
#include "app/PlaceWindow.h"
#include "data/Error.h"
#include "files/Paths.h"
#include "tests/support/TempFolder.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>
#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <thread>

namespace quillet::app {
namespace {

TEST(IniSettingsTest, ReadsWhatAPersonWroteAndKeepsIt) {
    const tests::TempFolder folder;
    const auto file = folder / "sub" / "settings.ini";
    IniSettings settings(QString::fromStdString(files::textOf(file)));
    EXPECT_EQ(settings.GetSetting("HALDREN", "Settings", "1차서버", "absent"), "absent");
    settings.SaveSetting("HALDREN", "Settings", "1차서버", "counter.example"); // makes the folder

    tests::writeFile(file, "\xEF\xBB\xBF; 본사 설정\r\n"
                           "[HALDREN/Settings]\r\n"
                           "1차서버=a=b;c \r\n"
                           "DBName=\r\n"
                           "\r\n"
                           "[외식업/LOCATION]\r\n"
                           "ID=C:\\포스\\%USER%\r\n"
                           "not a setting\r\n");
    EXPECT_EQ(settings.GetSetting("HALDREN", "Settings", "1차서버"), "a=b;c ") << "taken whole";
    EXPECT_EQ(settings.GetSetting("HALDREN", "Settings", "DBName", "x"), "") << "empty, not absent";
    EXPECT_EQ(settings.GetSetting("외식업", "LOCATION", "ID"), "C:\\포스\\%USER%");
    EXPECT_EQ(settings.GetSetting("외식업", "LOCATION", "DBName", "other"), "other");

    settings.SaveSetting("HALDREN", "Settings", "1차서버", "둘째");
    settings.SaveSetting("HALDREN", "Settings", "가맹점", "1000");
    settings.SaveSetting("ZELMARO_II", "DBLOC", "RCVVERSION", "1.0.0");
    EXPECT_EQ(tests::readFile(file), "; 본사 설정\n"
                                     "[HALDREN/Settings]\n"
                                     "1차서버=둘째\n"
                                     "DBName=\n"
                                     "가맹점=1000\n"
                                     "\n"
                                     "[외식업/LOCATION]\n"
                                     "ID=C:\\포스\\%USER%\n"
                                     "not a setting\n"
                                     "\n"
                                     "[ZELMARO_II/DBLOC]\n"
                                     "RCVVERSION=1.0.0\n");
}

TEST(IniSettingsTest, ReplacesNothingThatItDoesNotUnderstand) {
    const tests::TempFolder folder;
    const auto file = folder / "settings.ini";
    const std::string setting = "[HALDREN/Settings]\n가맹점=1000";
    const std::string cases[] = {
        "",                                    // cut to nothing, about to be written
        "[HALDREN/Settings]\n\xB0\xA1=1\n",    // code page 949
        std::string("\xFF\xFE[\0H\0\n\0", 8),  // UTF-16
        std::string("[\0H\0]\0\n\0", 8),       // without its mark
        setting.substr(0, setting.size() - 6), // cut in a letter
    };
    for (const std::string& bytes : cases) {
        tests::writeFile(file, bytes);
        IniSettings settings(QString::fromStdString(files::textOf(file)));
        EXPECT_THROW(settings.GetSetting("HALDREN", "Settings", "가맹점"), data::Error) << bytes;
        EXPECT_THROW(settings.SaveSetting("ZELMARO_II", "DBLOC", "RCVVERSION", "1"), data::Error);
        EXPECT_EQ(tests::readFile(file), bytes);
    }
    // Half of it is there, then the rest: nothing of it is lost.
    tests::writeFile(file, setting);
    std::thread writer([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        std::ofstream(file, std::ios::app) << "0\nDBName=chain\n";
    });
    IniSettings settings(QString::fromStdString(files::textOf(file)));
    settings.SaveSetting("ZELMARO_II", "DBLOC", "RCVVERSION", "1");
    writer.join();
    EXPECT_EQ(tests::readFile(file),
              setting + "0\nDBName=chain\n\n[ZELMARO_II/DBLOC]\nRCVVERSION=1\n");
}

TEST(ConnectionStringsTest, AreExact) {
    EXPECT_EQ(storeConnectionString("C:\\POS"),
              "PROVIDER=MSDataShape;Driver={Microsoft Access Driver (*.mdb)};Dbq=food.MDB;"
              "DefaultDir=C:\\POS;Uid=Admin;pwd=tavro5531");
    EXPECT_EQ(serverConnectionString("127.0.0.1;PORT=33061", "chain", "pos"),
              "DRIVER={MySQL ODBC 3.51 Driver};SERVER=127.0.0.1;PORT=33061;DATABASE=chain;UID=pos;"
              "PWD=mq5307;OPTION=16386");
}

TEST(PlaceWindowTest, KnowsItsCodes) {
    const QRect screen = QGuiApplication::primaryScreen()->geometry();
    QWidget window;
    window.resize(300, 200);
    window.move(7, 9);
    PlaceWindow(window, 5, false);
    EXPECT_EQ(window.pos(), QPoint(7, 9));
    EXPECT_TRUE(window.mask().isEmpty());
    PlaceWindow(window, 3, true);
    EXPECT_EQ(window.pos(), QPoint((screen.width() - 300) / 2, (screen.height() - 200) / 2));
    EXPECT_TRUE(window.mask().contains(QPoint(150, 3)));
    EXPECT_FALSE(window.mask().contains(QPoint(3, 3))) << "the corner is cut";
    EXPECT_FALSE(window.mask().contains(QPoint(150, 2)));
    PlaceWindow(window, 8, false);
    EXPECT_EQ(window.pos(), screen.topLeft());
    PlaceWindow(window, 9, false);
    EXPECT_EQ(window.geometry(),
              QRect(screen.left() + 200, screen.top(), screen.width() - 200, screen.height()));
    PlaceWindow(window, 2, false);
    EXPECT_TRUE(window.isMaximized());
}

} // namespace
} // namespace quillet::app
