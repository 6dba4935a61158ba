#include "tests/support/Counter.h"

#include "db/DB_Control.h"
#include "db/store/EmptyStore.h"
#include "files/Paths.h"
#include "tests/support/TestHeadOffice.h"

#include <QApplication>
#include <QMessageBox>
#include <QTest>
#include <QTimer>
#include <sqlite3.h>

#include <stdexcept>

namespace quillet::tests {

namespace {

constexpr int Patience = 60'000; // milliseconds

void require(bool condition, const std::string& what) {
    if (!condition)
        throw std::runtime_error(what);
}

} // namespace

Counter::Counter() : settings(QString::fromStdString(files::textOf(folder / "settings.ini"))) {
    db::createEmptyStore(storeFile());
    std::filesystem::create_directory(folder / "log");
}

Counter::~Counter() {
    window.reset();
    db::DB_Control::StoreConnection.reset();
}

std::string Counter::storeFile() const {
    return files::textOf(folder / "food.MDB");
}

void Counter::use(const TestHeadOffice& headOffice) {
    const std::vector<std::pair<std::string, std::string>> values{
        {"1차서버", headOffice.address()},
        {"개체명", "quorin.data"},
        {"가맹점", "1000"},
        {"카운터", "01"},
        {"DB서버", TestHeadOffice::databaseServer()},
        {"DBName", headOffice.databaseName()},
        {"DBUser", TestHeadOffice::databaseUser()}};
    for (const auto& [key, value] : values)
        settings.SaveSetting("HALDREN", "Settings", key, value);
}

void Counter::open() {
    window.reset();
    window = std::make_unique<app::frm_Quillet>(
        app::WindowSurroundings{settings, folder.path(), "1.0.0", logs::localNow, this});
    window->show();
}

void Counter::start() {
    open();
    bool begun = false; // the run starts with the first event
    QTimer::singleShot(0, window.get(), [&begun] { begun = true; });
    require(QTest::qWaitFor([&] { return begun; }, Patience), "the window never came up");
    waitForEndOfRun();
}

void Counter::waitForEndOfRun() {
    require(QTest::qWaitFor([&] { return !isWindowOpen() || isEnabled("Cmd1(0)"); }, Patience),
            "the run did not end");
    QCoreApplication::processEvents();
}

bool Counter::isWindowOpen() const {
    return window->isVisible();
}

template <typename Widget>
Widget& Counter::widget(const char* name) const {
    auto* found = window->findChild<Widget*>(QString::fromUtf8(name));
    require(found != nullptr, std::string("no control ") + name);
    return *found;
}

std::string Counter::text(const char* name) const {
    return widget<QLabel>(name).text().toStdString();
}

bool Counter::isEnabled(const char* name) const {
    return widget<QWidget>(name).isEnabled();
}

void Counter::tick(std::size_t index, bool on) {
    auto& box = widget<QCheckBox>(("Check1(" + std::to_string(index) + ")").c_str());
    if (box.isChecked() != on)
        QTest::mouseClick(&box, Qt::LeftButton, {}, QPoint(10, box.height() / 2));
    require(box.isChecked() == on, "the box cannot be ticked");
}

void Counter::click(const char* name) {
    QTest::mouseClick(&widget<QPushButton>(name), Qt::LeftButton);
}

void Counter::answerMessageBoxes() {
    auto* timer = new QTimer(window.get());
    QObject::connect(timer, &QTimer::timeout, window.get(), [this] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (box == nullptr)
            return;
        messageBoxes.push_back((box->windowTitle() + ": " + box->text()).toStdString());
        QTest::mouseClick(box->button(QMessageBox::Ok), Qt::LeftButton);
    });
    timer->start(20);
}

std::vector<std::string> Counter::rows(const std::string& query) const {
    sqlite3* handle = nullptr;
    sqlite3_open_v2(storeFile().c_str(), &handle, SQLITE_OPEN_READWRITE, nullptr);
    std::vector<std::string> result;
    const auto addRow = [](void* target, int columns, char** values, char**) {
        std::string row;
        for (int i = 0; i < columns; ++i)
            row += (i > 0 ? "|" : "") + std::string(values[i] != nullptr ? values[i] : "NULL");
        static_cast<std::vector<std::string>*>(target)->push_back(row);
        return 0;
    };
    if (sqlite3_exec(handle, query.c_str(), addRow, &result, nullptr) != SQLITE_OK)
        result.emplace_back(sqlite3_errmsg(handle));
    sqlite3_close(handle);
    return result;
}

void Counter::store(const std::string& statement) const {
    const std::vector<std::string> failure = rows(statement);
    require(failure.empty(), failure.empty() ? "" : failure.back());
}

} // namespace quillet::tests
