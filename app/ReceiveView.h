#pragma once

#include "db/Controls.h"
#include "sync/Run.h"

#include <cstddef>
#include <string>

namespace quillet::app {

/// How far a run is, beyond what bars and counters say.
enum class RunPhase {
    Collecting, ///< the server is asked, group by group; nobody knows yet how much there is
    Writing,    ///< the batch runs; it is not in the store before it is committed
    Committed,  ///< everything is in the store
    Failed      ///< the status line says what
};

/// The main window as the run driver sees it. Controls carry the window's names and indexes.
class ReceiveView {
public:
    virtual ~ReceiveView() = default;

    /// The `Check1` boxes.
    virtual sync::Ticks ticks() const = 0;

    virtual db::ProgressBar& PBar1(std::size_t index) = 0; ///< 0 overall, 1 current group
    /// 0 overall total, 1 overall counter, 2 total of the group, 3 counter of the group.
    virtual db::Label& Label3(std::size_t index) = 0;
    virtual db::Label& groupText() = 0; ///< `Label2(5)`
    virtual db::Label& lbl_MSG() = 0;   ///< the status line

    virtual void showPhase(RunPhase phase) = 0;

    /// Hourglass or the default pointer, for the whole screen of the program.
    virtual void setHourglass(bool on) = 0;

    /// A message box with an information icon; returns when it has been answered.
    virtual void inform(const std::string& text, const std::string& title) = 0;
};

} // namespace quillet::app
