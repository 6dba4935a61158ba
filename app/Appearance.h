#pragma once

#include <QColor>
#include <QPalette>

namespace quillet::app {

/// How the window looks: colours, style and fonts of the whole program.
enum class Appearance {
    Light,
    Dark,
    AsSystem ///< the system's own colours, for those who have set a contrast theme
};

/// What the person has set for the whole system.
Appearance systemAppearance();

/// Gives the program its looks. Before the first window.
void applyAppearance(Appearance appearance);

/// A surface and what is written on it.
struct OutcomeColours {
    QColor surface;
    QColor text;
};

OutcomeColours quietColours(const QPalette& palette);
OutcomeColours goodColours(const QPalette& palette);
OutcomeColours badColours(const QPalette& palette);

} // namespace quillet::app
