#pragma once

#include "app/ReceiveView.h"
#include "app/RunDriver.h"
#include "app/StoreLock.h"
#include "app/WindowControls.h"
#include "data/Error.h"
#include "db/WaitHandler.h"
#include "logs/Clock.h"
#include "sync/Run.h"
#include "sync/Settings.h"

#include <QPoint>
#include <QWidget>

#include <chrono>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

namespace quillet::app {

/// What the window needs from outside.
struct WindowSurroundings {
    sync::Settings& settings;
    std::filesystem::path programFolder; ///< holds the logs and, by default, `food.MDB`
    std::string version;                 ///< major.minor.revision
    logs::Clock clock = logs::localNow;
    sync::RunObserver* observer = nullptr; ///< may be absent
};

/// The main window: brings itself up, opens the store, and receives at its first activation as if
/// the start button had been pressed.
///
/// Everything runs on the window's thread, and the window stays alive meanwhile. Closing it ends a
/// run at once as long as nothing has been written; after that it takes effect when the run has
/// ended, so that a transaction is never torn. A second window on the same store says so and
/// receives nothing.
class frm_Quillet final : public QWidget, private ReceiveView, private db::WaitHandler {
    Q_OBJECT

public:
    explicit frm_Quillet(WindowSurroundings surroundings);
    ~frm_Quillet() override;

protected:
    void showEvent(QShowEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void Form_Load();
    void Form_Activate();
    void Form_QueryUnload();
    bool startUp();
    void startButton();
    void runDriver();
    bool isBusy() const { return activating_ || running_; }
    void becomeIdle();
    bool takeStore();
    void failStartUp(const data::Error& error);
    void say(const std::string& text);
    logs::DownloadLog downloadLog() const;
    std::string storeFolder() const;
    void openStoreDatabase(bool& opened);
    void composeServerConnection();
    void readHeadOffice();
    void reportVersionOnce();
    void migrateFlagColumnsOnce();
    std::string headOfficeSetting(const char* key) const;

    // ReceiveView
    sync::Ticks ticks() const override;
    db::ProgressBar& PBar1(std::size_t index) override { return *controls_.bars[index]; }
    db::Label& Label3(std::size_t index) override { return *controls_.counters[index]; }
    db::Label& groupText() override { return *controls_.groupText; }
    db::Label& lbl_MSG() override { return *controls_.message; }
    void showPhase(RunPhase phase) override { controls_.showPhase(phase); }
    void setHourglass(bool on) override;
    void inform(const std::string& text, const std::string& title) override;

    // db::WaitHandler
    bool lockAwaited() override;
    bool statementRuns(std::chrono::milliseconds soFar) override;
    void waitOver() override;

    WindowSurroundings surroundings_;
    WindowControls controls_;
    std::unique_ptr<StoreLock> storeLock_;
    std::unique_ptr<sync::Run> run_;
    std::string serverConnectionString_;
    bool activating_ = false;
    bool activated_ = false;
    bool running_ = false;
    bool closeWanted_ = false;
    bool hourglass_ = false;
    std::optional<std::string> messageBeforeWait_; ///< while another program's lock is waited for
    std::optional<QPoint> grip_; ///< where the pointer holds the window, while it does
};

} // namespace quillet::app
