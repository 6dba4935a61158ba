#include "app/Appearance.h"
#include "app/EndRequests.h"
#include "app/UserSettings.h"
#include "app/frm_Quillet.h"
#include "files/Paths.h"

#include <QApplication>
#include <QSessionManager>

#include <chrono>
#include <filesystem>
#include <thread>

namespace {

/// A pause after every statement, for demonstrations: a small receive is over before anyone has
/// looked. Milliseconds, from the environment; none by default.
class DemonstrationPause : public quillet::sync::RunObserver {
public:
    void statementDone() override {
        if (pause_.count() > 0)
            std::this_thread::sleep_for(pause_);
    }

private:
    const std::chrono::milliseconds pause_{qEnvironmentVariableIntValue("QUILLET_DEMO_PAUSE")};
};

} // namespace

int main(int argc, char* argv[]) {
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Quillet"));
    QApplication::setApplicationVersion(QStringLiteral(QUILLET_VERSION));
    quillet::app::applyAppearance(quillet::app::systemAppearance());

    const auto settings = quillet::app::openUserSettings();
    DemonstrationPause pause;
    std::filesystem::path folder =
        quillet::files::pathOf(QCoreApplication::applicationDirPath().toStdString());
    quillet::app::frm_Quillet window(
        {*settings, folder.make_preferred(), QUILLET_VERSION, quillet::logs::localNow, &pause});
    // Closing decides what may end at once and what has to be finished first.
    const auto close = [&window] { window.close(); };
    const quillet::app::EndRequests endRequests(close);
    QObject::connect(&application, &QGuiApplication::commitDataRequest, &window, close,
                     Qt::DirectConnection);
    window.show();
    return QApplication::exec();
}
