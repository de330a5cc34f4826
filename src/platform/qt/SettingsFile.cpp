#include "platform/qt/SettingsFile.h"

#include "platform/PlatformFailure.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QSaveFile>
#include <QSettings>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace fldc {

namespace {

std::optional<QString> plainText(const QVariant& value)
{
    if (value.typeId() != QMetaType::QString)
        return std::nullopt;
    return value.toString();
}

/// Where the value of a key stands in an INI file, and where a new line for it would go.
struct Place {
    qsizetype line = -1;  ///< of a new line: behind the header of the general section; -1: none
    qsizetype value = -1; ///< -1: the key is not there
    qsizetype valueEnd = -1;
    bool endsQuoted = false; ///< the file ends between quotes: nothing behind it would be read
};

/// Reads one entry as QSettings does: quotes keep line ends and semicolons from ending it, a
/// backslash keeps the character behind it. @p equals: of the first "=" outside quotes, or -1.
qsizetype endOfEntry(QByteArrayView bytes, qsizetype at, qsizetype& equals, bool& quoted)
{
    quoted = false;
    equals = -1;
    for (; at < bytes.size(); ++at) {
        const char character = bytes[at];
        if (character == '\\')
            ++at;
        else if (character == '"')
            quoted = !quoted;
        else if (!quoted && (character == '\n' || character == '\r' || character == ';'))
            break;
        else if (!quoted && character == '=' && equals == -1)
            equals = at;
    }
    return std::min(at, bytes.size());
}

qsizetype endOfLine(QByteArrayView bytes, qsizetype at)
{
    const qsizetype end = bytes.indexOf('\n', at);
    return end < 0 ? bytes.size() : end + 1;
}

/// The last entry for @p name counts. Keys before the first section belong to the general one.
Place placeOf(QByteArrayView bytes, const QByteArray& name)
{
    Place place;
    bool general = true;
    for (qsizetype at = 0; at < bytes.size();) {
        if (QByteArrayView(" \t\r\n").contains(bytes[at])) {
            ++at;
            continue;
        }
        if (bytes[at] == ';') {
            at = endOfLine(bytes, at);
            continue;
        }
        qsizetype equals = -1;
        const qsizetype end = endOfEntry(bytes, at, equals, place.endsQuoted);
        const QByteArray entry = bytes.sliced(at, end - at).trimmed().toByteArray();
        if (entry.startsWith('[')) {
            general = entry.left(entry.indexOf(']')).mid(1).trimmed().toLower() == "general";
            if (general && place.line < 0)
                place.line = endOfLine(bytes, end);
        } else if (general && equals >= 0 && bytes.sliced(at, equals - at).trimmed() == name) {
            place.value = equals + 1;
            place.valueEnd = end;
        }
        at = end;
    }
    return place;
}

/// The text as QSettings reads it back, whatever it holds.
QByteArray quoted(const QString& text)
{
    // "@" at the beginning would announce a type.
    const QByteArray bytes = (text.startsWith(u'@') ? u'@' + text : text).toUtf8();
    QByteArray result("\"");
    for (const char character : bytes) {
        if (character == '"' || character == '\\')
            result += '\\';
        if (static_cast<unsigned char>(character) < ' ')
            result +=
                QByteArray("\\x") + QByteArray::number(character, 16) + "\"\""; // ends the digits
        else
            result += character;
    }
    return result + '"';
}

QByteArray withValue(const QByteArray& before, const QByteArray& name, const QByteArray& value)
{
    const Place place = placeOf(before, name);
    QByteArray after = before;
    if (place.value >= 0)
        return after.replace(place.value, place.valueEnd - place.value, value);
    const QByteArray lineEnd = before.contains("\r\n") ? "\r\n" : "\n";
    const QByteArray line = name + '=' + value + lineEnd;
    if (place.endsQuoted && (place.line < 0 || place.line == before.size()))
        return "[General]" + lineEnd + line + lineEnd + before;
    if (place.line >= 0) {
        const bool open = !before.left(place.line).endsWith('\n');
        return after.insert(place.line, (open ? lineEnd : QByteArray()) + line);
    }
    if (!after.isEmpty())
        after += after.endsWith('\n') ? lineEnd : lineEnd + lineEnd;
    return after + "[General]" + lineEnd + line;
}

/// Puts the new content in the place of the file in one step.
void replaceFile(const QString& path, const QByteArray& content)
{
    const QFileInfo before(path);
    static_cast<void>(QDir().mkpath(before.absolutePath()));
    QSaveFile file(path);
    bool stored =
        file.open(QIODevice::WriteOnly) && file.write(content) == content.size() && file.flush();
    // QSettings keeps what it has read, and looks for changes by size and time.
    if (stored && before.exists()) {
        const QDateTime later = before.lastModified().addMSecs(1);
        stored = file.setFileTime(std::max(later, QDateTime::currentDateTime()),
                                  QFileDevice::FileModificationTime);
    }
    if (!stored || !file.commit())
        throw PlatformFailure(EIO, path + QStringLiteral(": ") + file.errorString());
}

} // namespace

QString SettingsFile::defaultPath()
{
    const QString path = qEnvironmentVariable("RV4100_FLDC_SETTINGS");
    return path.isEmpty() ? QStringLiteral("/etc/kelvane/RV4100_FLDC.conf") : path;
}

SettingsFile::SettingsFile(QString path) : m_path(std::move(path)) {}

std::optional<QString> SettingsFile::readText(const QString& name)
{
    if (!QFileInfo(m_path).isFile())
        return std::nullopt;
    const QSettings settings(m_path, QSettings::IniFormat);
    return plainText(settings.value(name));
}

void SettingsFile::writeText(const QString& name, const QString& value)
{
    // A new file would come into the place of the old one, be it a device or a named pipe.
    const QFileInfo info(m_path);
    if (info.exists() && !info.isFile())
        throw PlatformFailure(EINVAL, m_path + QStringLiteral(": not a regular file"));
    if (info.exists() && !info.isWritable())
        throw PlatformFailure::fromErrno(EACCES, m_path);
    QByteArray content;
    if (QFile file(m_path); info.exists()) {
        if (!file.open(QIODevice::ReadOnly))
            throw PlatformFailure(EIO, m_path + QStringLiteral(": ") + file.errorString());
        content = file.readAll();
    }
    replaceFile(m_path, withValue(content, name.toLatin1(), quoted(value)));
}

QMap<QString, QString> SettingsFile::section(const QString& section) const
{
    QMap<QString, QString> values;
    if (!QFileInfo(m_path).isFile())
        return values;
    QSettings settings(m_path, QSettings::IniFormat);
    settings.beginGroup(section);
    const QStringList names = settings.childKeys();
    for (const QString& name : names) {
        if (name.isEmpty()) // "=x"; asking for it makes the library complain
            continue;
        if (const auto text = plainText(settings.value(name)))
            values.insert(name, *text);
    }
    return values;
}

} // namespace fldc
