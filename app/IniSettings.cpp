#include "app/IniSettings.h"

#include "data/Error.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStringDecoder>
#include <QThread>

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

void IniSettings::fail(const QString& why) const {
    throw data::Error(data::number::FileAccess,
                      "The settings file " + path_.toStdString() + ' ' + why.toStdString());
}

QByteArray IniSettings::readBytes() const {
    QFile file(path_);
    if (!file.exists())
        return {};
    if (!file.open(QIODevice::ReadOnly))
        fail(QStringLiteral("cannot be read: ") + file.errorString());
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        fail(QStringLiteral("cannot be read: ") + file.errorString());
    return bytes;
}

/// What a writer has not finished shows in bytes that change, or that end in the middle of a line.
QByteArray IniSettings::readSettled() const {
    constexpr int Looks = 8;
    constexpr unsigned long Interval = 250; // milliseconds
    QByteArray bytes = readBytes();
    const auto isUnfinished = [&] {
        return QFile::exists(path_) && !bytes.endsWith('\n') &&
               (bytes.isEmpty() || bytes != settled_);
    };
    for (int look = 1; isUnfinished(); ++look) {
        QThread::msleep(Interval);
        const QByteArray again = readBytes();
        if (again == bytes && !bytes.isEmpty())
            break;
        if (look == Looks)
            fail(bytes.isEmpty() ? QStringLiteral("is empty. Another program may be writing it.")
                                 : QStringLiteral("is being written by another program."));
        bytes = again;
    }
    settled_ = bytes;
    return bytes;
}

QStringList IniSettings::readLines(const QByteArray& bytes) const {
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = decoder(bytes); // without a byte order mark
    if (decoder.hasError() || bytes.contains('\0'))
        fail(QStringLiteral("is not in UTF-8. Save it as UTF-8."));
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
    const QStringList lines = readLines(readSettled());
    const Place place = find(lines, sectionName(application, section), QString::fromStdString(key));
    if (place.line < 0)
        return defaultValue;
    const QString& line = lines[place.line];
    return line.mid(line.indexOf(QLatin1Char('=')) + 1).toStdString();
}

void IniSettings::SaveSetting(const std::string& application, const std::string& section,
                              const std::string& key, const std::string& value) {
    const QByteArray before = readSettled();
    QStringList lines = readLines(before);
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
    const QByteArray bytes = lines.join(QLatin1Char('\n')).toUtf8() + '\n';
    QDir().mkpath(QFileInfo(path_).absolutePath());
    QSaveFile file(path_);
    // The last bytes are written by the flush, and commit() does not ask how that went.
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.flush())
        fail(QStringLiteral("cannot be written: ") + file.errorString());
    if (readBytes() != before)
        fail(QStringLiteral("is being written by another program."));
    if (!file.commit())
        fail(QStringLiteral("cannot be written: ") + file.errorString());
    settled_ = bytes;
}

} // namespace quillet::app
