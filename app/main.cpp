#include "app/UserSettings.h"
#include "app/frm_Quillet.h"
#include "db/Paths.h"

#include <QApplication>
#include <QFont>

#include <chrono>
#include <thread>

namespace {

/// A pause after every statement, for demonstrations: a small receive is over before anyone has
/// looked. Milliseconds, from the environment; none by default.
std::function<void()> pauseForDemonstration() {
    const int milliseconds = qEnvironmentVariableIntValue("QUILLET_DEMO_PAUSE");
    if (milliseconds <= 0)
        return {};
    return [milliseconds] { std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds)); };
}

} // namespace

int main(int argc, char* argv[]) {
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Quillet"));
    QApplication::setApplicationVersion(QStringLiteral(QUILLET_VERSION));
    QFont font = QApplication::font();
    font.setFamilies({QStringLiteral("Malgun Gothic"), QStringLiteral("NanumGothic"),
                      QStringLiteral("Noto Sans CJK KR"), font.family()});
    QApplication::setFont(font);

    const auto settings = quillet::app::openUserSettings();
    quillet::app::frm_Quillet window(
        {*settings, quillet::db::pathOf(QCoreApplication::applicationDirPath().toStdString()),
         QUILLET_VERSION, quillet::db::localNow, pauseForDemonstration()});
    window.show();
    return QApplication::exec();
}
