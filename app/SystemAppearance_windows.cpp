#include "app/Appearance.h"

#include <QSettings>

#include <windows.h>

namespace quillet::app {

Appearance systemAppearance() {
    HIGHCONTRASTW contrast{};
    contrast.cbSize = sizeof contrast;
    if (SystemParametersInfoW(SPI_GETHIGHCONTRAST, sizeof contrast, &contrast, 0) != 0 &&
        (contrast.dwFlags & HCF_HIGHCONTRASTON) != 0)
        return Appearance::AsSystem;
    // Where Windows 10 and 11 keep what "Colors, choose your mode" has set for programs.
    const QSettings personal(QStringLiteral("HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\"
                                            "CurrentVersion\\Themes\\Personalize"),
                             QSettings::NativeFormat);
    return personal.value(QStringLiteral("AppsUseLightTheme"), 1).toInt() == 0 ? Appearance::Dark
                                                                               : Appearance::Light;
}

} // namespace quillet::app
