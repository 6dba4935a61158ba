#pragma once

#include "sync/Settings.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace quillet::app {

/// Settings in a UTF-8 text file as a person would write it: `[application/section]`, then lines
/// `key=value` whose value is everything after the first "=", without any escapes. The file is
/// read at every access and written atomically; lines that are not settings are kept.
///
/// A file that is there and cannot be understood is an error, never "no settings", and is never
/// replaced: one that is not UTF-8, one that is empty, one that another program is just writing
/// (its bytes change while it is looked at; a file without a line end behind its last line is
/// looked at twice).
class IniSettings : public sync::Settings {
public:
    explicit IniSettings(QString path);

    /// @throws data::Error 75 as said above.
    std::string GetSetting(const std::string& application, const std::string& section,
                           const std::string& key,
                           const std::string& defaultValue = "") const override;

    /// Creates the file and its folder where they are missing.
    /// @throws data::Error 75 as said above, or when not all of it can be brought to the disk. The
    ///         file is then as it was.
    void SaveSetting(const std::string& application, const std::string& section,
                     const std::string& key, const std::string& value) override;

private:
    struct Place {
        qsizetype line = -1;       ///< of the setting, or -1
        qsizetype sectionEnd = -1; ///< behind the section's last line that is not blank, or -1
    };

    QByteArray readBytes() const;
    QByteArray readSettled() const;
    QStringList readLines(const QByteArray& bytes) const;
    [[noreturn]] void fail(const QString& why) const;
    static Place find(const QStringList& lines, const QString& section, const QString& key);

    QString path_;
    mutable QByteArray settled_; ///< what was found to be at rest
};

} // namespace quillet::app
