#include "app/widgets/FlatProgressBar.h"

#include "app/widgets/Surface.h"

#include <QPainter>
#include <QTimerEvent>

#include <algorithm>
#include <cmath>

namespace quillet::app {

namespace {

constexpr int MoveInterval = 33;        // milliseconds
constexpr double RoundTrip = 2400;      // milliseconds there and back
constexpr double MovingShare = 0.22;    // of the bar's width
constexpr double MissingAtLeast = 0.02; // of the width, while anything is missing

} // namespace

FlatProgressBar::FlatProgressBar() {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setTextVisible(false);
    setValue(0);
    clock_.start();
}

QRectF FlatProgressBar::filled(const QRectF& inside) const {
    QRectF result = inside;
    if (isBusy()) {
        const double phase =
            std::fmod(static_cast<double>(clock_.elapsed()), RoundTrip) / RoundTrip;
        const double there = phase < 0.5 ? phase * 2 : 2 - phase * 2;
        result.setWidth(inside.width() * MovingShare);
        result.moveLeft(inside.left() + there * (inside.width() - result.width()));
        return result;
    }
    const double share =
        (static_cast<double>(value()) - minimum()) / (static_cast<double>(maximum()) - minimum());
    result.setWidth(inside.width() *
                    (value() >= maximum() ? 1 : std::clamp(share, 0.0, 1 - MissingAtLeast)));
    return result;
}

void FlatProgressBar::paintEvent(QPaintEvent* /*event*/) {
    if (isBusy() && !moving_.isActive())
        moving_.start(MoveInterval, this);
    QPainter painter(this);
    painter.drawPixmap(0, 0, trough());
    const QRectF bar = filled(rect());
    if (bar.width() >= 1)
        fillRounded(painter, bar, std::min(radius(), bar.width() / 2),
                    palette().color(QPalette::Highlight));
}

double FlatProgressBar::radius() const {
    return std::min(CornerRadius, height() / 2.0);
}

const QPixmap& FlatProgressBar::trough() {
    const double scale = devicePixelRatioF();
    const QSize pixels(static_cast<int>(std::ceil(width() * scale)),
                       static_cast<int>(std::ceil(height() * scale)));
    if (trough_.size() != pixels) {
        trough_ = QPixmap(pixels);
        trough_.setDevicePixelRatio(scale);
        trough_.fill(palette().color(QPalette::Base));
        QPainter painter(&trough_);
        fillRounded(painter, rect(), radius(), palette().color(QPalette::AlternateBase),
                    palette().color(QPalette::Mid), 1);
    }
    return trough_;
}

void FlatProgressBar::changeEvent(QEvent* event) {
    trough_ = QPixmap(); // its colours may be others now
    QProgressBar::changeEvent(event);
}

void FlatProgressBar::timerEvent(QTimerEvent* event) {
    if (event->timerId() != moving_.timerId()) {
        QProgressBar::timerEvent(event);
        return;
    }
    if (!isBusy())
        moving_.stop();
    update();
}

} // namespace quillet::app
