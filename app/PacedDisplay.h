#pragma once

#include "db/Controls.h"

#include <QElapsedTimer>

#include <cstdint>
#include <string>
#include <vector>

class QLabel;
class QProgressBar;

namespace quillet::app {

class PacedDisplay;

/// A window control whose widget follows at the display's pace.
class PacedControl {
public:
    explicit PacedControl(PacedDisplay& display);
    virtual ~PacedControl() = default;
    PacedControl(const PacedControl&) = delete;
    PacedControl& operator=(const PacedControl&) = delete;

    /// Brings the widget up to date, if anything has changed.
    void show();

protected:
    void changed() noexcept { isChanged_ = true; }

private:
    virtual void apply() = 0;

    bool isChanged_ = false;
};

class LabelControl : public db::Label, public PacedControl {
public:
    LabelControl(PacedDisplay& display, QLabel& widget);
    std::string Caption() const override { return caption_; }
    void SetCaption(const std::string& caption) override;

private:
    void apply() override;

    QLabel& widget_;
    std::string caption_;
};

class ProgressBarControl : public db::ProgressBar, public PacedControl {
public:
    ProgressBarControl(PacedDisplay& display, QProgressBar& widget);
    void SetMin(std::int32_t min) override;
    void SetMax(std::int32_t max) override;
    std::int32_t Value() const override { return value_; }
    void SetValue(std::int32_t value) override;

    /// What the widget makes of the value.
    enum class Look {
        Plain,
        Busy, ///< moves without an end: nobody knows how much there is
        Held, ///< never full: what has been done can still be undone
        Full
    };
    void setLook(Look look);

private:
    void apply() override;

    QProgressBar& widget_;
    std::int32_t min_ = 0;
    std::int32_t max_ = 100;
    std::int32_t value_ = 0;
    Look look_ = Look::Plain;
};

/// Shows what the controls hold at most about 30 times a second while a batch runs: a repaint per
/// statement costs several times the statement.
class PacedDisplay {
public:
    /// Milliseconds between two refreshes.
    static constexpr int RefreshInterval = 33;

    /// Milliseconds between two looks at what the window system has waiting. A look takes a tenth
    /// of a statement; no hand is quicker than this.
    static constexpr int AskInterval = 1;

    PacedDisplay();

    /// Lets waiting events be handled, and refreshes the widgets when it is time: the program's
    /// own events every time, the window system's once they may have waited for AskInterval.
    void yield();

    /// Brings every widget up to date now.
    void refresh();

private:
    friend class PacedControl;

    std::vector<PacedControl*> controls_;
    QElapsedTimer clock_;
    qint64 refreshed_ = 0; ///< when, by the clock
    qint64 asked_ = 0;
};

} // namespace quillet::app
