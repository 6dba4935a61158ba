#include "bench/receive/Counter.h"

#include "app/frm_Quillet.h"
#include "bench/receive/PeakMemory.h"
#include "bench/receive/Stopwatch.h"
#include "db/DB_Control.h"
#include "db/store/EmptyStore.h"
#include "files/Paths.h"

#include <QCoreApplication>
#include <QLabel>
#include <QProcessEnvironment>
#include <QPushButton>

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <utility>

namespace quillet::bench {

namespace {

QString q(const std::filesystem::path& path) {
    return QString::fromStdString(files::textOf(path));
}

} // namespace

Counter::Counter(const Site& site, const std::string& address, const std::string& database)
    : settings_(q(folder_ / "config" / "quillet" / "settings.ini")),
      connectionString_(site.connectionString(database)) {
    const std::vector<std::pair<std::string, std::string>> values{{"1차서버", address},
                                                                  {"개체명", "quorin.data"},
                                                                  {"가맹점", "1000"},
                                                                  {"카운터", "01"},
                                                                  {"DB서버", site.databaseServer},
                                                                  {"DBName", database},
                                                                  {"DBUser", site.databaseUser}};
    for (const auto& [key, value] : values)
        settings_.SaveSetting(sync::HeadOfficeApplication, "Settings", key, value);
    std::filesystem::create_directory(folder_ / "log");
    std::filesystem::copy_file(site.quillet, folder_ / "quillet");
    db::createEmptyStore(store());
}

void Counter::useStore(const std::filesystem::path& original) {
    std::filesystem::copy_file(original, store(),
                               std::filesystem::copy_options::overwrite_existing);
}

WindowFigures Counter::receiveInWindow(bool againstFloors) {
    std::optional<FloorSites> floors;
    if (againstFloors)
        floors = FloorSites{connectionString_, store(), folder_ / "floor.MDB"};
    WindowWatch watch(std::move(floors));
    app::frm_Quillet window({settings_, folder_.path(), "1.0.0", logs::localNow, &watch});
    const auto* const startButton = window.findChild<QPushButton*>("Cmd1(0)");
    window.show();
    // The button can be pressed again only after a run that has failed.
    while (window.isVisible() && !(watch.hasBegun() && startButton->isEnabled()))
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    if (window.isVisible())
        throw std::runtime_error("the window says: " +
                                 window.findChild<QLabel*>("lbl_MSG")->text().toStdString());
    const WindowFigures figures = watch.finish();
    db::DB_Control::StoreConnection.reset();
    return figures;
}

void Counter::start(QProcess& process) const {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("XDG_CONFIG_HOME", q(folder_ / "config"));
    process.setProcessEnvironment(environment);
    process.start(q(folder_ / "quillet"), {});
}

void Counter::requireSuccess(const QProcess& process) const {
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        throw std::runtime_error("the program ended with code " +
                                 std::to_string(process.exitCode()));
    const std::string log = tests::readOnlyFileIn(folder_ / "log");
    if (log != "no file")
        throw std::runtime_error("the download log says: " + log);
}

ProcessFigures Counter::receive() {
    constexpr int Glance = 10; // milliseconds
    ProcessFigures figures;
    QProcess process;
    const Stopwatch stopwatch;
    start(process);
    while (!process.waitForFinished(Glance)) {
        if (process.state() == QProcess::NotRunning)
            break;
        figures.peakMemory = std::max(figures.peakMemory, peakMemory(process.processId()));
    }
    figures.seconds = stopwatch.seconds();
    requireSuccess(process);
    return figures;
}

} // namespace quillet::bench
