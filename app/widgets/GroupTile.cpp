#include "app/widgets/GroupTile.h"

#include "app/widgets/Surface.h"

#include <QPainter>

namespace quillet::app {

namespace {

void drawTick(QPainter& painter, const QRectF& box, const QColor& colour) {
    const auto at = [&box](double x, double y) {
        return QPointF(box.left() + x * box.width(), box.top() + y * box.height());
    };
    painter.setPen(QPen(colour, box.width() / 8, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    const QPointF line[]{at(0.22, 0.52), at(0.43, 0.73), at(0.79, 0.29)};
    painter.drawPolyline(line, 3);
}

} // namespace

QSize GroupTile::sizeHint() const {
    const int text = fontMetrics().horizontalAdvance(QCheckBox::text());
    return {text + fontMetrics().height() * 2, fontMetrics().height() * 2};
}

void GroupTile::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    const QColor accent = palette().color(QPalette::Highlight);
    const QColor text = palette().color(QPalette::WindowText);
    const QColor quiet = palette().color(QPalette::Mid);
    fillRounded(painter, rect(), CornerRadius,
                palette().color(isDown() ? QPalette::AlternateBase : QPalette::Base),
                isChecked() ? accent : quiet, isChecked() ? 2 : 1);

    const double side = fontMetrics().height() * 0.82;
    const double gap = side * 0.45;
    const double content = side + gap + fontMetrics().horizontalAdvance(QCheckBox::text());
    const QRectF box((width() - content) / 2, (height() - side) / 2, side, side);
    fillRounded(painter, box, side / 5, isChecked() ? accent : palette().color(QPalette::Base),
                isChecked() ? accent : quiet, 2);
    if (isChecked())
        drawTick(painter, box, palette().color(QPalette::HighlightedText));
    painter.setPen(text);
    painter.drawText(QRectF(box.right() + gap, 0, width() - box.right() - gap, height()),
                     Qt::AlignLeft | Qt::AlignVCenter, QCheckBox::text());
    if (hasFocus())
        drawFocusRing(painter, rect(), CornerRadius, palette());
}

} // namespace quillet::app
