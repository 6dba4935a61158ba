#include "app/UserSettings.h"
#include "data/Error.h"

#include <QSettings>
#include <QString>

namespace quillet::app {

namespace {

class RegistrySettings : public sync::Settings {
public:
    std::string GetSetting(const std::string& application, const std::string& section,
                           const std::string& key, const std::string& defaultValue) const override {
        const QSettings registry(keyOf(application, section), QSettings::NativeFormat);
        return registry.value(QString::fromStdString(key), QString::fromStdString(defaultValue))
            .toString()
            .toStdString();
    }

    void SaveSetting(const std::string& application, const std::string& section,
                     const std::string& key, const std::string& value) override {
        QSettings registry(keyOf(application, section), QSettings::NativeFormat);
        registry.setValue(QString::fromStdString(key), QString::fromStdString(value));
        registry.sync();
        if (registry.status() != QSettings::NoError)
            throw data::Error(data::number::FileAccess,
                              "The registry refuses the value " + key + ".");
    }

private:
    static QString keyOf(const std::string& application, const std::string& section) {
        return QLatin1String("HKEY_CURRENT_USER\\Software\\VB and VBA Program Settings\\") +
               QString::fromStdString(application) + QLatin1Char('\\') +
               QString::fromStdString(section);
    }
};

} // namespace

std::unique_ptr<sync::Settings> openUserSettings() {
    return std::make_unique<RegistrySettings>();
}

} // namespace quillet::app
