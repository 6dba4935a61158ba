#include "app/widgets/Surface.h"

#include <QPainter>

namespace quillet::app {

void fillRounded(QPainter& painter, const QRectF& rect, double radius, const QColor& colour,
                 const QColor& edge, double edgeWidth) {
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(edgeWidth > 0 ? QPen(edge, edgeWidth) : QPen(Qt::NoPen));
    painter.setBrush(colour);
    const double inset = edgeWidth / 2; // a pen draws on both sides of its line
    painter.drawRoundedRect(rect.adjusted(inset, inset, -inset, -inset), radius, radius);
}

void drawFocusRing(QPainter& painter, const QRectF& rect, double radius, const QPalette& palette) {
    constexpr double Width = 3;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(palette.color(QPalette::WindowText), Width));
    painter.setBrush(Qt::NoBrush);
    const double inset = Width / 2;
    painter.drawRoundedRect(rect.adjusted(inset, inset, -inset, -inset), radius, radius);
}

} // namespace quillet::app
