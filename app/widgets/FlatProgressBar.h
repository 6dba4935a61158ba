#pragma once

#include <QBasicTimer>
#include <QElapsedTimer>
#include <QPixmap>
#include <QProgressBar>

namespace quillet::app {

/// A progress bar in two plain colours. A batch repaints it 30 times a second, and styles take
/// half a millisecond to draw theirs. It looks full only at its maximum, however near it is; with
/// minimum and maximum equal, something moves in it. Lies on a surface of the palette's Base.
class FlatProgressBar final : public QProgressBar {
public:
    FlatProgressBar();

protected:
    void paintEvent(QPaintEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    bool isBusy() const { return maximum() == minimum(); }
    QRectF filled(const QRectF& inside) const;
    double radius() const;
    const QPixmap& trough();

    QBasicTimer moving_;
    QElapsedTimer clock_;
    QPixmap trough_; ///< the bar without its filling, drawn once
};

} // namespace quillet::app
