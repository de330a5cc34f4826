#include "platform/qt/SettingsFile.h"

#include "platform/PlatformFailure.h"

#include <QFileInfo>
#include <QSettings>

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
    // QSettings puts a new file in the place of the old one, be it a device or a named pipe.
    const QFileInfo info(m_path);
    if (info.exists() && !info.isFile())
        throw PlatformFailure(EINVAL, m_path + QStringLiteral(": not a regular file"));
    QSettings settings(m_path, QSettings::IniFormat);
    if (!settings.isWritable())
        throw PlatformFailure::fromErrno(EACCES, m_path);
    const QVariant before = settings.value(name);
    settings.setValue(name, value);
    settings.sync();
    if (settings.status() == QSettings::NoError)
        return;
    // QSettings would go on answering with the value that it could not store.
    if (before.isValid())
        settings.setValue(name, before);
    else
        settings.remove(name);
    throw PlatformFailure(EIO, m_path + QStringLiteral(": the value can't be stored"));
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
        if (const auto text = plainText(settings.value(name)))
            values.insert(name, *text);
    }
    return values;
}

} // namespace fldc
