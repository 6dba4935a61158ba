#pragma once

#include <QRegion>
#include <QSize>

#include <cstdint>

class QWidget;

namespace quillet::app {

/// Twips in a pixel at 96 dots per inch, the unit of logical pixels.
inline constexpr int TwipsPerPixel = 15;

/// Sets a window's state and place on its screen.
/// @param position 0, 1, 2: normal, minimised, maximised; 3: normal and centred; 8: normal, at the
///                 top left; 9: full height, 3000 twips narrower than the screen and moved right by
///                 as much. Other codes change nothing.
/// @param rounded  cuts the window's corners round.
void PlaceWindow(QWidget& window, std::int16_t position, bool rounded);

/// The region of a rounded window of that size in pixels: from 3, 3 to its far corner, corners of
/// an ellipse 19 pixels wide and high (CreateRoundRectRgn's arguments).
QRegion roundedRegion(const QSize& size);

} // namespace quillet::app
