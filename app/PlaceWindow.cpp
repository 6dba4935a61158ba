#include "app/PlaceWindow.h"

#include <QGuiApplication>
#include <QPainterPath>
#include <QScreen>
#include <QWidget>

namespace quillet::app {

namespace {

constexpr int Edge = 3;
constexpr double CornerDiameter = 19;
constexpr int SideMarginTwips = 3000;

QRect screenOf(const QWidget& window) {
    const QScreen* screen = window.screen();
    return (screen != nullptr ? screen : QGuiApplication::primaryScreen())->geometry();
}

void centre(QWidget& window) {
    const QRect screen = screenOf(window);
    window.move(screen.left() + (screen.width() - window.width()) / 2,
                screen.top() + (screen.height() - window.height()) / 2);
}

} // namespace

QRegion roundedRegion(const QSize& size) {
    QPainterPath path;
    path.addRoundedRect(QRectF(Edge, Edge, size.width() - Edge, size.height() - Edge),
                        CornerDiameter / 2, CornerDiameter / 2);
    return QRegion(path.toFillPolygon().toPolygon());
}

void PlaceWindow(QWidget& window, std::int16_t position, bool rounded) {
    const QRect screen = screenOf(window);
    switch (position) {
    case 0:
        window.setWindowState(Qt::WindowNoState);
        break;
    case 1:
        window.setWindowState(Qt::WindowMinimized);
        break;
    case 2:
        window.setWindowState(Qt::WindowMaximized);
        break;
    case 3:
        window.setWindowState(Qt::WindowNoState);
        centre(window);
        break;
    case 8:
        window.setWindowState(Qt::WindowNoState);
        window.move(screen.topLeft());
        break;
    case 9: {
        const int margin = SideMarginTwips / TwipsPerPixel;
        window.resize(screen.width() - margin, screen.height());
        window.move(screen.left() + margin, screen.top());
        break;
    }
    default:
        break;
    }
    if (rounded)
        window.setMask(roundedRegion(window.size()));
}

} // namespace quillet::app
