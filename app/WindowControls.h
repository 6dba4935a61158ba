#pragma once

#include "app/PacedDisplay.h"
#include "app/ReceiveView.h"
#include "app/widgets/Card.h"
#include "app/widgets/StatusLine.h"
#include "sync/Run.h"

#include <QCheckBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>

#include <array>
#include <memory>

class QWidget;

namespace quillet::app {

/// The controls of the main window under their own names and indexes, laid out to be read at
/// arm's length and pressed with a finger. Each widget's object name is "Name(index)".
class WindowControls {
public:
    /// The window at 100 %, in logical pixels: it fits a screen of 1024 by 768.
    static constexpr int Width = 880;
    static constexpr int Height = 640;

    /// Builds the controls into a window, which owns the widgets.
    /// @param scale of all sizes, where the screen has no room for the whole ones.
    WindowControls(QWidget& window, const QString& version, double scale);

    /// What the bars look like, which page the middle shows, and the status line's colour.
    void showPhase(RunPhase phase);

    /// Shows why a run failed, in the place of its progress.
    void showFailure(const sync::Failure& failure);

    /// A run takes ticks and buttons out of the person's hands.
    void setEnabled(bool enabled);

    std::array<QCheckBox*, 5> Check1{};   ///< items, members, users, settings, account titles
    std::array<QPushButton*, 2> Cmd1{};   ///< start, close
    std::array<QProgressBar*, 2> PBar1{}; ///< overall, current group
    std::array<QLabel*, 6> Label2{};      ///< captions; 5 names the current group
    std::array<QLabel*, 4> Label3{};      ///< total, counter, total and counter of the group
    StatusLine* lbl_MSG = nullptr;
    QPlainTextEdit* reason = nullptr; ///< of a failed run

    PacedDisplay display;
    std::array<std::unique_ptr<ProgressBarControl>, 2> bars;
    std::array<std::unique_ptr<LabelControl>, 4> counters;
    std::unique_ptr<LabelControl> groupText;
    std::unique_ptr<LabelControl> message;

private:
    int px(int atFullSize) const;
    void setTextSize(QWidget& widget, int pixels, bool bold = false) const;
    QLabel* label(const QString& text, int size, bool bold = false) const;
    QWidget* header(const QString& version);
    QWidget* groups();
    QWidget* progress();
    QWidget* failurePage();
    QWidget* buttons();
    void showCounters(bool shown);

    double scale_;
    Card* card_ = nullptr; ///< pages: progress, failure
};

} // namespace quillet::app
