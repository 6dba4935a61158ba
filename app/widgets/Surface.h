#pragma once

#include <QColor>
#include <QPalette>

class QPainter;
class QPaintEvent;
class QRectF;

namespace quillet::app {

/// Corner radius of everything inside the window, in pixels at 100 %.
inline constexpr double CornerRadius = 10;

/// Fills a rounded rectangle, its edge smooth.
/// @param edge colour of a line of that width inside it; width 0: none.
void fillRounded(QPainter& painter, const QRectF& rect, double radius, const QColor& colour,
                 const QColor& edge = QColor(), double edgeWidth = 0);

/// The ring around the control that has the keyboard.
void drawFocusRing(QPainter& painter, const QRectF& rect, double radius, const QPalette& palette);

} // namespace quillet::app
