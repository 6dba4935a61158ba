#include "app/frm_Quillet.h"

#include "app/ConnectionStrings.h"
#include "app/PlaceWindow.h"
#include "app/VersionReport.h"
#include "db/AsciiText.h"
#include "db/DB_Control.h"
#include "db/Paths.h"
#include "sync/ReceivedRowFlags.h"
#include "sync/UpdateStamps.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QMessageBox>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QPainterPath>
#include <QTimer>
#include <QWindow>

namespace quillet::app {

namespace {

constexpr QSize WindowSize(760, 520);
constexpr std::int16_t Centred = 3;

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
      controls_(*this, QString::fromStdString(surroundings_.version)) {
    setWindowTitle(QStringLiteral("기초자료 수신 - Quillet"));
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
    composeServerConnection();
    setFixedSize(WindowSize);
    PlaceWindow(*this, Centred, true);
}

void frm_Quillet::Form_Activate() {
    if (activated_ || activating_ || !isVisible())
        return;
    activating_ = true;
    activated_ = startUp();
    activating_ = false;
}

bool frm_Quillet::startUp() {
    bool opened = false;
    openStoreDatabase(opened);
    if (!opened)
        return false;
    run_ = std::make_unique<sync::Run>(
        *db::DB_Control::StoreConnection, surroundings_.settings,
        db::DownloadLog(surroundings_.programFolder, surroundings_.clock), surroundings_.clock,
        surroundings_.observer);
    readHeadOffice();
    QCoreApplication::processEvents(); // so that the window paints
    if (run_ == nullptr)
        return false; // it was closed instead
    reportVersionOnce();
    migrateFlagColumnsOnce();
    sync::ReadStamps(*run_);
    runDriver();
    return true;
}

void frm_Quillet::Form_QueryUnload() {
    run_.reset();
}

void frm_Quillet::openStoreDatabase(bool& opened) {
    opened = false;
    try {
        std::string folder =
            surroundings_.settings.GetSetting(sync::StoreApplication, "LOCATION", "ID");
        if (folder.empty())
            folder = db::textOf(surroundings_.programFolder);
        db::DB_Control::StoreConnection = std::make_unique<db::VelkDBPro>(
            db::DailyLog(surroundings_.programFolder, surroundings_.clock), [this] {
                controls_.display.yield();
                run_->observer().statementDone();
            });
        db::DB_Control::StoreConnection->DBOpen(storeConnectionString(folder));
        // A failed open deliberately counts as opened: the run then fails on its first store
        // statement, in the window's own words.
        opened = true;
    } catch (const std::exception& failure) {
        QMessageBox::critical(this, QGuiApplication::applicationDisplayName(),
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
    if (db::isBlank(headOffice.serverAddress)) {
        headOffice.serverAddress = headOfficeSetting("2차서버");
        surroundings_.settings.SaveSetting(sync::HeadOfficeApplication, "Settings", "1차서버",
                                           headOffice.serverAddress);
    }
    headOffice.remoteObjectName = headOfficeSetting("개체명");
    headOffice.storeCode = headOfficeSetting("가맹점");
    if (db::isBlank(headOffice.storeCode))
        headOffice.storeCode = "1000"; // not saved
}

void frm_Quillet::reportVersionOnce() {
    constexpr const char* Application = "ZELMARO_II";
    sync::Settings& settings = surroundings_.settings;
    const std::string version(db::trimmed(surroundings_.version));
    const std::string reported = settings.GetSetting(Application, "DBLOC", "RCVVERSION");
    if (version != db::trimmed(reported) && ReportReceiveVersion(*run_, version))
        settings.SaveSetting(Application, "DBLOC", "RCVVERSION", version);
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
    if (run_ != nullptr)
        runDriver();
    else
        Form_Activate();
}

void frm_Quillet::runDriver() {
    if (running_)
        return;
    running_ = true;
    lbl_MSG().SetCaption(""); // what an earlier run said is no longer true
    controls_.display.refresh();
    for (QPushButton* button : controls_.Cmd1)
        button->setEnabled(false);
    const RunDriver::Result result = RunDriver(*run_, *this).receive();
    controls_.display.refresh();
    running_ = false;
    for (QPushButton* button : controls_.Cmd1)
        button->setEnabled(true);
    if (result != RunDriver::Result::Failed || closeWanted_)
        close();
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
    QMessageBox::information(this, QString::fromStdString(title), lines(text));
}

void frm_Quillet::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    // Not every desktop lets a new window come to the front; the receive must not wait for it.
    QTimer::singleShot(0, this, &frm_Quillet::Form_Activate);
}

void frm_Quillet::closeEvent(QCloseEvent* event) {
    if (running_) {
        closeWanted_ = true;
        event->ignore();
        return;
    }
    Form_QueryUnload();
    event->accept();
}

void frm_Quillet::paintEvent(QPaintEvent* event) {
    // The controls' repaints come by here, many times a second, and none reaches the edge.
    constexpr int EdgeWidth = 12;
    if (rect().adjusted(EdgeWidth, EdgeWidth, -EdgeWidth, -EdgeWidth).contains(event->rect()))
        return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath edge;
    edge.addRoundedRect(QRectF(rect()).adjusted(4, 4, -2, -2), 9, 9);
    painter.setPen(QPen(palette().color(QPalette::Mid), 2));
    painter.drawPath(edge);
}

void frm_Quillet::mousePressEvent(QMouseEvent* event) {
    // Without a frame, the window is moved by its free space.
    if (event->button() == Qt::LeftButton && windowHandle() != nullptr)
        windowHandle()->startSystemMove();
}

} // namespace quillet::app
