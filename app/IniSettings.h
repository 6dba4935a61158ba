#pragma once

#include "sync/Settings.h"

#include <QString>
#include <QStringList>

namespace quillet::app {

/// Settings in a UTF-8 text file as a person would write it: `[application/section]`, then lines
/// `key=value` whose value is everything after the first "=", without any escapes. The file is
/// read at every access and written atomically; lines that are not settings are kept.
class IniSettings : public sync::Settings {
public:
    explicit IniSettings(QString path);

    std::string GetSetting(const std::string& application, const std::string& section,
                           const std::string& key,
                           const std::string& defaultValue = "") const override;

    /// Creates the file and its folder where they are missing; one that cannot be written is
    /// passed over, as a lost setting is only read as absent again.
    void SaveSetting(const std::string& application, const std::string& section,
                     const std::string& key, const std::string& value) override;

private:
    struct Place {
        qsizetype line = -1;       ///< of the setting, or -1
        qsizetype sectionEnd = -1; ///< behind the section's last line that is not blank, or -1
    };

    QStringList readLines() const;
    static Place find(const QStringList& lines, const QString& section, const QString& key);

    QString path_;
};

} // namespace quillet::app
