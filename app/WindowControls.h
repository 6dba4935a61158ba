#pragma once

#include "app/PacedDisplay.h"

#include <QCheckBox>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>

#include <array>
#include <memory>

class QWidget;

namespace quillet::app {

/// The controls of the main window under their own names and indexes, laid out to be read at
/// arm's length. Each widget's object name is "Name(index)".
class WindowControls {
public:
    /// Builds the controls into a window, which owns the widgets.
    WindowControls(QWidget& window, const QString& version);

    std::array<QCheckBox*, 5> Check1{};   ///< items, members, users, settings, account titles
    std::array<QPushButton*, 2> Cmd1{};   ///< start, close
    std::array<QProgressBar*, 2> PBar1{}; ///< overall, current group
    std::array<QLabel*, 6> Label2{};      ///< captions; 5 names the current group
    std::array<QLabel*, 4> Label3{};      ///< total, counter, total and counter of the group
    QLabel* lbl_MSG = nullptr;            ///< status line

    PacedDisplay display;
    std::array<std::unique_ptr<ProgressBarControl>, 2> bars;
    std::array<std::unique_ptr<LabelControl>, 4> counters;
    std::unique_ptr<LabelControl> groupText;
    std::unique_ptr<LabelControl> message;

private:
    QWidget* header(const QString& version);
    QWidget* groups();
    QWidget* progress();
    QWidget* buttons();
};

} // namespace quillet::app
