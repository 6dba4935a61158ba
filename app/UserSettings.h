#pragma once

#include "sync/Settings.h"

#include <memory>

namespace quillet::app {

/// The settings store of the user who runs the program: on Windows the registry below
/// `HKEY_CURRENT_USER\Software\VB and VBA Program Settings`, elsewhere the file
/// `$XDG_CONFIG_HOME/quillet/settings.ini` (`~/.config` when the variable is not set).
std::unique_ptr<sync::Settings> openUserSettings();

} // namespace quillet::app
