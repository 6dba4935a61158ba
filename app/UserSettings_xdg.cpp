#include "app/IniSettings.h"
#include "app/UserSettings.h"

#include <QStandardPaths>

namespace quillet::app {

std::unique_ptr<sync::Settings> openUserSettings() {
    // GenericConfigLocation is $XDG_CONFIG_HOME, or ~/.config.
    return std::make_unique<IniSettings>(
        QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
        QLatin1String("/quillet/settings.ini"));
}

} // namespace quillet::app
