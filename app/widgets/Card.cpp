#include "app/widgets/Card.h"

#include "app/widgets/Surface.h"

#include <QPaintEvent>
#include <QPainter>

namespace quillet::app {

void Card::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    // What moves inside comes by here many times a second, and never reaches the edge.
    constexpr int Edge = 12;
    if (rect().adjusted(Edge, Edge, -Edge, -Edge).contains(event->rect()))
        painter.fillRect(event->rect(), palette().color(QPalette::Base));
    else
        fillRounded(painter, rect(), CornerRadius, palette().color(QPalette::Base),
                    palette().color(QPalette::Mid), 1);
}

} // namespace quillet::app
