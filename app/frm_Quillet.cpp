#include "app/frm_Quillet.h"

#include "app/ConnectionStrings.h"
#include "app/MessageBox.h"
#include "app/PlaceWindow.h"
#include "app/VersionReport.h"
#include "app/widgets/Surface.h"
#include "data/AsciiText.h"
#include "db/DB_Control.h"
#include "files/Paths.h"
#include "sync/ReceivedRowFlags.h"
#include "sync/Receiver.h"

#include <QApplication>
#include <QCloseEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QScreen>
#include <QTimer>
#include <QWindow>

#include <algorithm>

namespace quillet::app {

namespace {

constexpr QSize WindowSize(WindowControls::Width, WindowControls::Height);
constexpr std::int16_t Centred = 3;

/// How much of its full size the window can have: a screen of few logical pixels (a high scaling
/// on a small screen) must show all of it.
double scaleForScreen() {
    constexpr double Share = 0.98; // of the screen, so that an edge is seen
    const QSize room = QGuiApplication::primaryScreen()->availableGeometry().size();
    return std::min({1.0, Share * room.width() / WindowSize.width(),
                     Share * room.height() / WindowSize.height()});
}

/// Whether windows can have pixels that are half transparent. Elsewhere corners are cut.
bool hasSmoothCorners() {
    const QString platform = QGuiApplication::platformName();
    return platform == QLatin1String("windows") || platform == QLatin1String("wayland") ||
           platform == QLatin1String("offscreen");
}

/// How long a statement may take when somebody wants the end: far longer than any of a receive.
constexpr std::chrono::seconds LongestStatement{10};

/// Line ends as message boxes know them.
QString lines(const std::string& text) {
    QString result = QString::fromStdString(text);
    result.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    result.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    return result;
}

} // namespace

frm_Quillet::frm_Quillet(WindowSurroundings surroundings)
    : QWidget(nullptr, Qt::Window | Qt::FramelessWindowHint),
      surroundings_(std::move(surroundings)),
      controls_(*this, QString::fromStdString(surroundings_.version), scaleForScreen()) {
    setWindowTitle(QStringLiteral("기초자료 수신 - Quillet"));
    setAttribute(Qt::WA_TranslucentBackground, hasSmoothCorners());
    connect(controls_.Cmd1[0], &QPushButton::clicked, this, &frm_Quillet::startButton);
    connect(controls_.Cmd1[1], &QPushButton::clicked, this, &QWidget::close);
    // Coming back from another program; closing a message box of our own does not count.
    connect(qGuiApp, &QGuiApplication::applicationStateChanged, this,
            [this](Qt::ApplicationState state) {
                if (state == Qt::ApplicationActive && isVisible())
                    QTimer::singleShot(0, this, &frm_Quillet::Form_Activate);
            });
    Form_Load();
}

frm_Quillet::~frm_Quillet() {
    setHourglass(false);
}

void frm_Quillet::Form_Load() {
    Label3(0).SetCaption("0");
    Label3(1).SetCaption("0");
    controls_.display.refresh();
    try {
        composeServerConnection();
    } catch (const data::Error&) {
        serverConnectionString_.clear(); // start-up meets it again, and says so
    }
    setFixedSize(WindowSize * scaleForScreen());
    PlaceWindow(*this, Centred, true);
}

void frm_Quillet::Form_Activate() {
    if (activated_ || activating_ || !isVisible())
        return;
    activating_ = true;
    controls_.setEnabled(false);
    try {
        activated_ = startUp();
    } catch (const data::Error& error) {
        failStartUp(error);
    }
    activating_ = false;
    becomeIdle();
}

bool frm_Quillet::startUp() {
    run_.reset();
    composeServerConnection();
    if (!takeStore())
        return false;
    bool opened = false;
    openStoreDatabase(opened);
    if (!opened)
        return false;
    run_ = std::make_unique<sync::Run>(*db::DB_Control::StoreConnection, surroundings_.settings,
                                       downloadLog(), surroundings_.clock, surroundings_.observer);
    run_->yield = [this] { controls_.display.yield(); };
    run_->endWanted = [this] { return closeWanted_; };
    readHeadOffice();
    QCoreApplication::processEvents(); // so that the window paints
    if (!closeWanted_)
        reportVersionOnce();
    if (closeWanted_)
        return false; // it was closed instead
    migrateFlagColumnsOnce();
    runDriver();
    return true;
}

/// The window stays, and its start button tries again.
void frm_Quillet::failStartUp(const data::Error& error) {
    run_.reset();
    const sync::Failure failure{"설정 확인", "",
                                std::to_string(error.Number()) + " : " + error.Description()};
    downloadLog().write(failure.title, "", error.Number(), error.Description());
    lbl_MSG().SetCaption("설정을 읽을 수 없습니다");
    showPhase(RunPhase::Failed);
    controls_.showFailure(failure);
}

logs::DownloadLog frm_Quillet::downloadLog() const {
    return logs::DownloadLog(surroundings_.programFolder, surroundings_.clock);
}

void frm_Quillet::Form_QueryUnload() {
    run_.reset();
    storeLock_.reset();
}

bool frm_Quillet::takeStore() {
    const std::filesystem::path store = files::pathOf(storeFolder()) / StoreFileName;
    storeLock_.reset();
    storeLock_ = std::make_unique<StoreLock>(store);
    switch (storeLock_->outcome()) {
    case StoreLock::Outcome::Held:
        break;
    case StoreLock::Outcome::HeldElsewhere:
        lbl_MSG().SetCaption("다른 창에서 이미 기초자료를 수신하고 있습니다");
        showPhase(RunPhase::Failed);
        return false;
    case StoreLock::Outcome::NotPossible:
        // A store that is not there has its own words, when it is read.
        if (std::error_code unknown; std::filesystem::exists(store, unknown))
            downloadLog().write(sync::StoreTitle, "", data::number::FileAccess,
                                "The store cannot be locked against a second window (" +
                                    storeLock_->reason() +
                                    "). It is received all the same: see to it that one window at "
                                    "a time does.");
        break;
    }
    return true;
}

std::string frm_Quillet::storeFolder() const {
    const std::string folder =
        surroundings_.settings.GetSetting(sync::StoreApplication, "LOCATION", "ID");
    return folder.empty() ? files::textOf(surroundings_.programFolder) : folder;
}

void frm_Quillet::openStoreDatabase(bool& opened) {
    opened = false;
    const std::string folder = storeFolder(); // start-up has its words for settings
    try {
        db::DB_Control::StoreConnection = std::make_unique<db::VelkDBPro>(
            logs::DailyLog(surroundings_.programFolder, surroundings_.clock),
            [this] {
                controls_.display.yield();
                run_->observer().statementDone();
            },
            static_cast<db::WaitHandler*>(this));
        db::DB_Control::StoreConnection->DBOpen(storeConnectionString(folder));
        // A failed open deliberately counts as opened: the run then fails on its first store
        // statement, in the window's own words.
        opened = true;
    } catch (const std::exception& failure) {
        showMessageBox(*this, QMessageBox::Critical, QGuiApplication::applicationDisplayName(),
                       lines(failure.what()));
    }
}

std::string frm_Quillet::headOfficeSetting(const char* key) const {
    return sync::headOfficeSetting(surroundings_.settings, key);
}

void frm_Quillet::composeServerConnection() {
    serverConnectionString_ = serverConnectionString(
        headOfficeSetting("DB서버"), headOfficeSetting("DBName"), headOfficeSetting("DBUser"));
}

void frm_Quillet::readHeadOffice() {
    sync::HeadOffice& headOffice = run_->headOffice;
    headOffice.connectionString = serverConnectionString_;
    headOffice.serverAddress = headOfficeSetting("1차서버");
    if (data::isBlank(headOffice.serverAddress)) {
        headOffice.serverAddress = headOfficeSetting("2차서버");
        run_->saveSetting(sync::HeadOfficeApplication, "Settings", "1차서버",
                          headOffice.serverAddress);
    }
    headOffice.remoteObjectName = headOfficeSetting("개체명");
    headOffice.storeCode = headOfficeSetting("가맹점");
    if (data::isBlank(headOffice.storeCode))
        headOffice.storeCode = "1000"; // not saved
}

void frm_Quillet::reportVersionOnce() {
    constexpr const char* Application = "ZELMARO_II";
    const sync::Settings& settings = surroundings_.settings;
    const std::string version(data::trimmed(surroundings_.version));
    const std::string reported = settings.GetSetting(Application, "DBLOC", "RCVVERSION");
    if (version != data::trimmed(reported) && ReportReceiveVersion(*run_, version))
        run_->saveSetting(Application, "DBLOC", "RCVVERSION", version);
}

void frm_Quillet::migrateFlagColumnsOnce() {
    if (surroundings_.settings.GetSetting(sync::StoreApplication, "RCV", "TABLEUPDATE").empty())
        sync::MigrateFlagColumns(*run_);
}

void frm_Quillet::startButton() {
    const sync::Ticks ticked = ticks();
    // Settings and account titles deliberately do not count here.
    if (!ticked[0] && !ticked[1] && !ticked[2]) {
        inform("기초자료 수신 정보를 선택하세요", "기초자료 선택");
        return;
    }
    if (run_ != nullptr && run_->store().isUsable()) {
        runDriver();
        return;
    }
    // A store that was put in its place, or replaced, while the window stood open.
    activated_ = false;
    Form_Activate();
}

void frm_Quillet::runDriver() {
    if (running_)
        return;
    running_ = true;
    lbl_MSG().SetCaption(""); // what an earlier run said is no longer true
    controls_.display.refresh();
    controls_.setEnabled(false);
    const RunDriver::Result result = RunDriver(*run_, *this).receive();
    if (result == RunDriver::Result::Failed && run_->failure)
        controls_.showFailure(*run_->failure);
    controls_.display.refresh();
    running_ = false;
    closeWanted_ = closeWanted_ || result != RunDriver::Result::Failed;
    becomeIdle();
}

void frm_Quillet::becomeIdle() {
    if (isBusy())
        return;
    controls_.setEnabled(true);
    if (closeWanted_)
        close();
}

void frm_Quillet::say(const std::string& text) {
    if (messageBeforeWait_)
        messageBeforeWait_ = text;
    else
        lbl_MSG().SetCaption(text);
}

bool frm_Quillet::lockAwaited() {
    if (!messageBeforeWait_) {
        messageBeforeWait_ = lbl_MSG().Caption();
        lbl_MSG().SetCaption("다른 프로그램이 저장소를 쓰고 있어 기다립니다");
    }
    controls_.display.yield();
    return run_ == nullptr || !run_->isEnding();
}

void frm_Quillet::waitOver() {
    if (!messageBeforeWait_)
        return;
    lbl_MSG().SetCaption(*messageBeforeWait_);
    messageBeforeWait_.reset();
}

bool frm_Quillet::statementRuns(std::chrono::milliseconds soFar) {
    controls_.display.yield();
    return !closeWanted_ || (run_ != nullptr && run_->mustFinish && soFar < LongestStatement);
}

sync::Ticks frm_Quillet::ticks() const {
    sync::Ticks result{};
    for (std::size_t i = 0; i < result.size(); ++i)
        result[i] = controls_.Check1[i]->isChecked();
    return result;
}

void frm_Quillet::setHourglass(bool on) {
    if (on == hourglass_)
        return;
    hourglass_ = on;
    if (on)
        QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    else
        QGuiApplication::restoreOverrideCursor();
}

void frm_Quillet::inform(const std::string& text, const std::string& title) {
    controls_.display.refresh();
    showMessageBox(*this, QMessageBox::Information, QString::fromStdString(title), lines(text));
}

void frm_Quillet::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    // Not every desktop lets a new window come to the front; the receive must not wait for it.
    QTimer::singleShot(0, this, &frm_Quillet::Form_Activate);
}

void frm_Quillet::closeEvent(QCloseEvent* event) {
    if (isBusy()) {
        closeWanted_ = true;
        if (run_ != nullptr && run_->mustFinish)
            say("수신이 끝나면 창을 닫습니다");
        controls_.display.refresh();
        // The run that shows a message box goes on behind it.
        if (QWidget* const box = QApplication::activeModalWidget())
            box->close();
        event->ignore();
        return;
    }
    closeWanted_ = false; // it may be shown again
    Form_QueryUnload();
    event->accept();
}

void frm_Quillet::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    // The controls' repaints come by here, many times a second, and none reaches the edge.
    constexpr int EdgeWidth = 16;
    if (rect().adjusted(EdgeWidth, EdgeWidth, -EdgeWidth, -EdgeWidth).contains(event->rect()))
        painter.fillRect(event->rect(), palette().color(QPalette::Window));
    else
        fillRounded(painter, QRectF(rect()).adjusted(4, 4, -1, -1), 9,
                    palette().color(QPalette::Window), palette().color(QPalette::Mid), 2);
}

// Without a frame, the window is moved by its free space: by hand, because the system's own move is
// a loop that would hold up the run. Wayland has no other.

void frm_Quillet::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton)
        return;
    if (QGuiApplication::platformName() == QLatin1String("wayland"))
        windowHandle()->startSystemMove();
    else
        grip_ = event->globalPosition().toPoint() - pos();
}

void frm_Quillet::mouseMoveEvent(QMouseEvent* event) {
    if (grip_)
        move(event->globalPosition().toPoint() - *grip_);
}

void frm_Quillet::mouseReleaseEvent(QMouseEvent* /*event*/) {
    grip_.reset();
}

void frm_Quillet::keyPressEvent(QKeyEvent* event) {
    const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isEnter && !event->isAutoRepeat())
        (focusWidget() == controls_.Cmd1[1] ? controls_.Cmd1[1] : controls_.Cmd1[0])->click();
    else if (event->key() == Qt::Key_Escape && !isBusy())
        close();
    else
        QWidget::keyPressEvent(event);
}

} // namespace quillet::app
