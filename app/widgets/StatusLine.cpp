#include "app/widgets/StatusLine.h"

#include "app/Appearance.h"
#include "app/widgets/Surface.h"

#include <QAccessible>
#include <QPainter>

namespace quillet::app {

void StatusLine::setTone(Tone tone) {
    if (tone == tone_)
        return;
    tone_ = tone;
    update();
    if (tone != Tone::Quiet) {
        QAccessibleEvent alert(this, QAccessible::Alert);
        QAccessible::updateAccessibility(&alert);
    }
}

void StatusLine::paintEvent(QPaintEvent* /*event*/) {
    if (text().isEmpty())
        return;
    QPainter painter(this);
    const OutcomeColours colours = tone_ == Tone::Good  ? goodColours(palette())
                                   : tone_ == Tone::Bad ? badColours(palette())
                                                        : quietColours(palette());
    fillRounded(painter, rect(), CornerRadius, colours.surface);
    painter.setPen(colours.text);
    const int margin = fontMetrics().height() / 2;
    painter.drawText(rect().adjusted(margin, 0, -margin, 0), Qt::AlignCenter | Qt::TextWordWrap,
                     text());
}

} // namespace quillet::app
