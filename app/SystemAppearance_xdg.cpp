#include "app/Appearance.h"

#include <QGuiApplication>

namespace quillet::app {

Appearance systemAppearance() {
    // The desktop's platform theme has put its colours into the palette.
    const QPalette palette = QGuiApplication::palette();
    return palette.color(QPalette::Window).lightness() < 128 ? Appearance::Dark : Appearance::Light;
}

} // namespace quillet::app
