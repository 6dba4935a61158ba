#include "app/IniSettings.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace quillet::app {

namespace {

QString sectionName(const std::string& application, const std::string& section) {
    return QString::fromStdString(application) + QLatin1Char('/') + QString::fromStdString(section);
}

bool isSection(const QString& line, QString& name) {
    const QString bare = line.trimmed();
    if (!bare.startsWith(QLatin1Char('[')) || !bare.endsWith(QLatin1Char(']')))
        return false;
    name = bare.mid(1, bare.size() - 2);
    return true;
}

} // namespace

IniSettings::IniSettings(QString path) : path_(std::move(path)) {}

QStringList IniSettings::readLines() const {
    QFile file(path_);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QString text = QString::fromUtf8(file.readAll());
    if (text.startsWith(QChar::ByteOrderMark))
        text.remove(0, 1);
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    if (text.endsWith(QLatin1Char('\n')))
        text.chop(1);
    return text.isEmpty() ? QStringList() : text.split(QLatin1Char('\n'));
}

IniSettings::Place IniSettings::find(const QStringList& lines, const QString& section,
                                     const QString& key) {
    Place place;
    bool inside = false;
    QString name;
    for (qsizetype i = 0; i < lines.size(); ++i) {
        if (isSection(lines[i], name)) {
            inside = name.compare(section, Qt::CaseInsensitive) == 0;
            if (inside)
                place.sectionEnd = i + 1;
            continue;
        }
        if (!inside || lines[i].trimmed().isEmpty())
            continue;
        place.sectionEnd = i + 1;
        const qsizetype equals = lines[i].indexOf(QLatin1Char('='));
        if (equals > 0 && lines[i].left(equals).trimmed().compare(key, Qt::CaseInsensitive) == 0) {
            place.line = i;
            return place;
        }
    }
    return place;
}

std::string IniSettings::GetSetting(const std::string& application, const std::string& section,
                                    const std::string& key, const std::string& defaultValue) const {
    const QStringList lines = readLines();
    const Place place = find(lines, sectionName(application, section), QString::fromStdString(key));
    if (place.line < 0)
        return defaultValue;
    const QString& line = lines[place.line];
    return line.mid(line.indexOf(QLatin1Char('=')) + 1).toStdString();
}

void IniSettings::SaveSetting(const std::string& application, const std::string& section,
                              const std::string& key, const std::string& value) {
    QStringList lines = readLines();
    const QString name = sectionName(application, section);
    const Place place = find(lines, name, QString::fromStdString(key));
    const QString line = QString::fromStdString(key + "=" + value);
    if (place.line >= 0) {
        lines[place.line] = line;
    } else if (place.sectionEnd >= 0) {
        lines.insert(place.sectionEnd, line);
    } else {
        if (!lines.isEmpty())
            lines << QString();
        lines << QLatin1Char('[') + name + QLatin1Char(']') << line;
    }
    QDir().mkpath(QFileInfo(path_).absolutePath());
    QSaveFile file(path_);
    if (!file.open(QIODevice::WriteOnly))
        return;
    file.write(lines.join(QLatin1Char('\n')).toUtf8() + '\n');
    file.commit();
}

} // namespace quillet::app
