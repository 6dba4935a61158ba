// Pictures of the real window in every state that a person can meet, each reached the way it is
// reached at a counter: a head office with the sample chain, and what goes wrong there.
//
//     quillet-screenshots FOLDER [light|dark]

#include "app/Appearance.h"
#include "app/MessageBox.h"
#include "tests/support/Counter.h"
#include "tests/support/TestHeadOffice.h"

#include <QApplication>
#include <QDir>
#include <QMessageBox>
#include <QScreen>
#include <QTest>
#include <QThread>
#include <QTimer>

#include <cstdio>
#include <map>
#include <string>
#include <utility>

namespace quillet::tests {
namespace {

/// What is on the screen around a window: its corners show what is behind them.
void take(const QWidget& window, const QString& file) {
    QTest::qWait(80);
    const QRect place = window.frameGeometry();
    const QPixmap picture =
        QGuiApplication::platformName() == QLatin1String("offscreen")
            ? const_cast<QWidget&>(window).grab()
            : window.screen()->grabWindow(0, place.x(), place.y(), place.width(), place.height());
    if (!picture.save(file))
        std::fprintf(stderr, "cannot write %s\n", file.toUtf8().constData());
}

class Photographer {
public:
    explicit Photographer(QString folder) : folder_(std::move(folder)) {}

    void takeAll() {
        takeRun();
        takeFailures();
        takeStoreFailures();
        takeMessages();
    }

private:
    QString file(const std::string& name) const {
        return folder_ + QLatin1Char('/') + QString::fromStdString(name) + QStringLiteral(".png");
    }

    /// A whole receive, photographed when each group is half way, and before and after.
    void takeRun() {
        TestHeadOffice office;
        office.load("data.sql");
        office.load("generate.sql");
        Counter counter;
        counter.use(office);
        counter.afterStatement = [&, last = std::string(), done = 0]() mutable {
            const auto* bar = counter.window->findChild<QProgressBar*>("PBar1(1)");
            static const std::map<std::string, std::string> Names{
                {"품목 정보 수신 중", "running-1-items"},
                {"회원 정보 수신 중", "running-2-members"},
                {"사용자 정보 수신 중", "running-3-users"},
                {"설정 정보 수신 중", "running-4-settings"},
                {"계정과목 정보 수신 중", "running-5-accounts"},
                {"사업자 정보 수신 중", "running-6-business"}};
            // The first group and the small ones at the end would be over between two repaints.
            const int total = QString::fromStdString(counter.text("Label3(0)")).toInt();
            ++done;
            QThread::msleep(done > total - 130 ? 35 : done < 900 ? 1 : 0);
            const std::string group = counter.text("Label2(5)");
            if (group == last || bar->value() * 2 < bar->maximum() || Names.count(group) == 0)
                return;
            last = group;
            take(*counter.window, file(Names.at(group)));
        };
        counter.beforeQuery = [&](const std::string& sql) {
            if (sql.find("FROM CT") != sql.npos && sql.find("CTMEM") != sql.npos)
                take(*counter.window, file("collecting"));
            if (sql.find("RCTBAS") != sql.npos)
                take(*counter.window, file("received"));
        };
        counter.open();
        counter.window->grab().save(file("idle"));
        counter.start();
    }

    /// One run for each failure text: the head office lacks one table.
    void takeFailures() {
        const std::pair<const char*, const char*> cases[]{
            {"KIND", "failed-01-categories"},  {"PR", "failed-02-products"},
            {"PRR", "failed-03-availability"}, {"PROP", "failed-04-option-names"},
            {"PRC", "failed-05-courses"},      {"PRO", "failed-06-options"},
            {"PRS", "failed-07-sets"},         {"CTMEM", "failed-08-members"},
            {"CTCOM", "failed-09-partners"},   {"ST", "failed-10-users"},
            {"FN", "failed-12-accounts"},      {"RCTI", "failed-13-business"}};
        for (const auto& [table, name] : cases) {
            TestHeadOffice office;
            office.load("data.sql");
            office.sql(std::string("DROP TABLE ") + table);
            Counter counter;
            counter.use(office);
            counter.start();
            take(*counter.window, file(name));
        }
        // The settings table is asked for the price option as well: it goes once that has passed.
        TestHeadOffice office;
        office.load("data.sql");
        Counter counter;
        counter.use(office);
        counter.beforeQuery = [&](const std::string& sql) {
            if (sql.find("FROM ST") != sql.npos)
                office.sql("DROP TABLE BAS");
        };
        counter.start();
        take(*counter.window, file("failed-11-settings"));
    }

    void takeStoreFailures() {
        TestHeadOffice office;
        office.load("data.sql");
        office.sql("UPDATE KIND SET KD_NAME = '할매''s 국수' WHERE KD_ID = '102000000000000'");
        Counter counter;
        counter.use(office);
        counter.start();
        take(*counter.window, file("failed-14-statement"));

        counter.settings.SaveSetting("HALDREN", "Settings", "1차서버", "127.0.0.1:1");
        counter.start();
        take(*counter.window, file("failed-15-unreachable"));
    }

    void takeMessages() {
        TestHeadOffice office;
        Counter counter;
        counter.use(office);
        counter.settings.SaveSetting("HALDREN", "Settings", "개체명", "no.such");
        counter.start();
        for (const std::size_t box : {0U, 1U, 2U})
            counter.tick(box, false);
        const auto photographed = [&](const char* name) {
            QTimer::singleShot(200, counter.window.get(), [this, name, &counter] {
                take(*counter.window, file(name));
                QApplication::activeModalWidget()->close();
            });
        };
        photographed("message-selection");
        counter.click("Cmd1(0)");

        Counter idle;
        idle.open();
        QTimer::singleShot(0, idle.window.get(), [&] {
            QTimer::singleShot(200, idle.window.get(), [&] {
                take(*idle.window, file("message-nothing"));
                QApplication::activeModalWidget()->close();
            });
            app::showMessageBox(
                *idle.window, QMessageBox::Information, "자료수신 완료",
                "기초자료 수신 자료가 없습니다\n\n이미 기초자료 업데이트 상태입니다");
        });
        QTest::qWait(1000);

        app::frm_Quillet second(
            {counter.settings, counter.folder.path(), "1.0.0", logs::localNow, nullptr});
        second.show();
        QTest::qWait(300);
        take(second, file("second-window"));
    }

    QString folder_;
};

} // namespace
} // namespace quillet::tests

int main(int argc, char* argv[]) {
    QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() < 2 || !quillet::tests::TestHeadOffice::isAvailable()) {
        std::fputs("usage: scripts/screenshots\n", stderr);
        return 2;
    }
    quillet::app::applyAppearance(arguments.value(2) == QLatin1String("dark")
                                      ? quillet::app::Appearance::Dark
                                      : quillet::app::Appearance::Light);
    QDir().mkpath(arguments[1]);
    quillet::tests::Photographer(arguments[1]).takeAll();
    return 0;
}
