#pragma once

#include <QLabel>

namespace quillet::app {

/// The line that says what happened, in the colour of it.
class StatusLine final : public QLabel {
public:
    enum class Tone { Quiet, Good, Bad };

    using QLabel::QLabel;

    /// Also tells those who listen instead of looking.
    void setTone(Tone tone);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Tone tone_ = Tone::Quiet;
};

} // namespace quillet::app
