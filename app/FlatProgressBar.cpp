#include "app/FlatProgressBar.h"

#include <QPainter>

#include <algorithm>
#include <cstdint>

namespace quillet::app {

void FlatProgressBar::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.fillRect(rect(), palette().color(QPalette::Mid));
    const QRect inside = rect().adjusted(1, 1, -1, -1);
    painter.fillRect(inside, palette().color(QPalette::Base));
    const std::int64_t range = std::int64_t{maximum()} - minimum();
    if (range <= 0)
        return;
    const std::int64_t done = std::max<std::int64_t>(std::int64_t{value()} - minimum(), 0);
    const auto width = static_cast<int>(inside.width() * done / range);
    painter.fillRect(inside.x(), inside.y(), width, inside.height(),
                     palette().color(QPalette::Highlight));
}

} // namespace quillet::app
