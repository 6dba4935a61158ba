#include "app/Appearance.h"

#include <QApplication>
#include <QFont>
#include <QFontDatabase>
#include <QFontMetrics>
#include <QStyleFactory>

namespace quillet::app {

namespace {

bool isDark(const QPalette& palette) {
    return palette.color(QPalette::Window).lightness() <
           palette.color(QPalette::WindowText).lightness();
}

struct Colours {
    QColor window, text, surface, sunken, edge, quietText, accent, onAccent;
};

QPalette paletteOf(const Colours& c) {
    QPalette palette;
    const auto set = [&palette](std::initializer_list<QPalette::ColorRole> roles,
                                const QColor& colour) {
        for (const QPalette::ColorRole role : roles)
            palette.setColor(role, colour);
    };
    set({QPalette::Window}, c.window);
    set({QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText},
        c.text);
    set({QPalette::Base, QPalette::Button, QPalette::ToolTipBase}, c.surface);
    set({QPalette::AlternateBase}, c.sunken);
    set({QPalette::Mid}, c.edge);
    set({QPalette::PlaceholderText}, c.quietText);
    set({QPalette::Highlight, QPalette::Link}, c.accent);
    set({QPalette::HighlightedText}, c.onAccent);
    palette.setColor(QPalette::Disabled, QPalette::ButtonText, c.quietText);
    palette.setColor(QPalette::Disabled, QPalette::WindowText, c.quietText);
    return palette;
}

QPalette lightPalette() {
    return paletteOf({.window = 0xF3F5F6,
                      .text = 0x16202A,
                      .surface = 0xFFFFFF,
                      .sunken = 0xE6EAED,
                      .edge = 0xBCC6CE,
                      .quietText = 0x55626E,
                      .accent = 0x0F6E6A,
                      .onAccent = 0xFFFFFF});
}

QPalette darkPalette() {
    return paletteOf({.window = 0x1A2025,
                      .text = 0xEEF2F5,
                      .surface = 0x252D34,
                      .sunken = 0x303A43,
                      .edge = 0x53616D,
                      .quietText = 0xA7B4BF,
                      .accent = 0x3DBDB3,
                      .onAccent = 0x06211F});
}

/// Families that have Hangul, the usual ones of each system first.
QStringList families(const QFont& system) {
    QStringList result{QStringLiteral("Malgun Gothic"),
                       QStringLiteral("NanumGothic"),
                       QStringLiteral("Noto Sans CJK KR"),
                       QStringLiteral("Noto Sans KR"),
                       QStringLiteral("Gulim"),
                       QStringLiteral("Dotum"),
                       QStringLiteral("UnDotum")};
    const QStringList installed = QFontDatabase::families();
    result.removeIf([&installed](const QString& family) { return !installed.contains(family); });
    result += QFontDatabase::families(QFontDatabase::Korean);
    result += system.family();
    result.removeDuplicates();
    return result;
}

} // namespace

void applyAppearance(Appearance appearance) {
    if (appearance != Appearance::AsSystem) {
        QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
        QApplication::setPalette(appearance == Appearance::Dark ? darkPalette() : lightPalette());
    }
    QFont font = QApplication::font();
    font.setFamilies(families(font));
    QApplication::setFont(font);
}

OutcomeColours quietColours(const QPalette& palette) {
    return {palette.color(QPalette::AlternateBase), palette.color(QPalette::WindowText)};
}

OutcomeColours goodColours(const QPalette& palette) {
    return isDark(palette) ? OutcomeColours{0x153D2B, 0x9BE6BD}
                           : OutcomeColours{0xDDF2E6, 0x0A5630};
}

OutcomeColours badColours(const QPalette& palette) {
    return isDark(palette) ? OutcomeColours{0x52211D, 0xFFC2BA}
                           : OutcomeColours{0xFCE3E0, 0x8C1810};
}

} // namespace quillet::app
