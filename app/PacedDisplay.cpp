#include "app/PacedDisplay.h"

#include <QCoreApplication>
#include <QLabel>
#include <QProgressBar>

#include <algorithm>

namespace quillet::app {

PacedControl::PacedControl(PacedDisplay& display) {
    display.controls_.push_back(this);
}

void PacedControl::show() {
    if (!isChanged_)
        return;
    isChanged_ = false;
    apply();
}

LabelControl::LabelControl(PacedDisplay& display, QLabel& widget)
    : PacedControl(display), widget_(widget), caption_(widget.text().toStdString()) {}

void LabelControl::SetCaption(const std::string& caption) {
    caption_ = caption;
    changed();
}

void LabelControl::apply() {
    widget_.setText(QString::fromStdString(caption_));
}

ProgressBarControl::ProgressBarControl(PacedDisplay& display, QProgressBar& widget)
    : PacedControl(display), widget_(widget) {}

void ProgressBarControl::SetMin(std::int32_t min) {
    min_ = min;
    changed();
}

void ProgressBarControl::SetMax(std::int32_t max) {
    max_ = max;
    changed();
}

void ProgressBarControl::SetValue(std::int32_t value) {
    value_ = value;
    changed();
}

void ProgressBarControl::setLook(Look look) {
    look_ = look;
    changed();
}

void ProgressBarControl::apply() {
    if (look_ == Look::Busy) {
        widget_.setRange(0, 0);
        return;
    }
    widget_.setRange(min_, std::max(max_, min_ + 1));
    const std::int32_t full = widget_.maximum();
    widget_.setValue(look_ == Look::Full   ? full
                     : look_ == Look::Held ? std::min(value_, full - 1)
                                           : value_);
}

PacedDisplay::PacedDisplay() {
    clock_.start();
}

void PacedDisplay::yield() {
    const qint64 now = clock_.elapsed();
    if (now - refreshed_ >= RefreshInterval)
        refresh();
    if (now - asked_ < AskInterval) {
        QCoreApplication::sendPostedEvents();
        return;
    }
    QCoreApplication::processEvents();
    asked_ = now;
}

void PacedDisplay::refresh() {
    for (PacedControl* control : controls_)
        control->show();
    refreshed_ = clock_.elapsed();
}

} // namespace quillet::app
