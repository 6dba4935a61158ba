#include "app/widgets/TouchButton.h"

#include "app/widgets/Surface.h"

#include <QPainter>

namespace quillet::app {

TouchButton::TouchButton(const QString& text, Rank rank) : QPushButton(text), rank_(rank) {}

void TouchButton::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    const bool first = rank_ == Rank::First;
    QColor fill = palette().color(first ? QPalette::Highlight : QPalette::Base);
    QColor text = palette().color(first ? QPalette::HighlightedText : QPalette::WindowText);
    if (!isEnabled()) {
        fill = palette().color(QPalette::AlternateBase);
        text = palette().color(QPalette::PlaceholderText);
    } else if (isDown()) {
        fill = first ? fill.darker(120) : palette().color(QPalette::AlternateBase);
    }
    fillRounded(painter, rect(), CornerRadius, fill, palette().color(QPalette::Mid),
                first && isEnabled() ? 0 : 1);
    painter.setPen(text);
    painter.drawText(rect(), Qt::AlignCenter | Qt::TextShowMnemonic, QPushButton::text());
    if (hasFocus())
        drawFocusRing(painter, rect(), CornerRadius, palette());
}

} // namespace quillet::app
