#include "app/widgets/LastingScrollBar.h"

#include <QPainter>

namespace quillet::app {

void LastingScrollBar::paintEvent(QPaintEvent* event) {
    if (maximum() > minimum())
        QScrollBar::paintEvent(event);
    else // nothing behind it is painted
        QPainter(this).fillRect(rect(), palette().color(QPalette::Base));
}

} // namespace quillet::app
