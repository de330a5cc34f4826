#include "platform/linux/Sysfs.h"

#include "platform/linux/LinuxSystem.h"

#include <algorithm>
#include <array>

#include <sys/sysmacros.h>

namespace fldc {

using namespace Qt::StringLiterals;

namespace {

QString parentOf(const QString& folder)
{
    return folder.section(u'/', 0, -2);
}

// E:ID_MM_CANDIDATE=1
void addProperties(const QByteArray& data, QHash<QString, QString>& properties)
{
    for (const QByteArray& line : data.split('\n')) {
        const qsizetype equals = line.indexOf('=');
        if (line.startsWith("E:") && equals > 0)
            properties.insert(QString::fromUtf8(line.sliced(2, equals - 2)),
                              QString::fromUtf8(line.sliced(equals + 1)));
    }
}

} // namespace

QString sysfsFolder(const LinuxSystem& system, dev_t device)
{
    return system.realPath(u"/sys/dev/char/%1:%2"_s.arg(major(device)).arg(minor(device)));
}

bool hasHardware(const LinuxSystem& system, const QString& folder)
{
    // Lines to other machines and programs hang in the air.
    static constexpr std::array virtualLines{"rfcomm"_L1, "ttyGS"_L1, "tnt"_L1};
    if (system.linkText(folder + u"/device"_s).isEmpty()) {
        const QString name = folder.section(u'/', -1);
        return std::ranges::any_of(virtualLines,
                                   [&](QLatin1StringView start) { return name.startsWith(start); });
    }
    return system.text(folder + u"/type"_s) != "0"_L1; // an UART of unknown type is not there
}

QString usbFolder(const LinuxSystem& system, const QString& folder)
{
    QString at = system.realPath(folder + u"/device"_s);
    while (at.startsWith("/sys/devices/"_L1)) {
        if (!system.text(at + u"/idVendor"_s).isEmpty())
            return at;
        at = parentOf(at);
    }
    return {};
}

QString driverOf(const LinuxSystem& system, const QString& folder)
{
    QString at = system.realPath(folder + u"/device"_s);
    // Newer systems put two devices of a bus of their own between a built-in port and its driver.
    while (system.linkText(at + u"/subsystem"_s).endsWith("/serial-base"_L1))
        at = parentOf(at);
    return system.linkText(at + u"/driver"_s).section(u'/', -1);
}

std::optional<QHash<QString, QString>> udevProperties(const LinuxSystem& system, dev_t device,
                                                      const QString& folder)
{
    const auto own = system.read(u"/run/udev/data/c%1:%2"_s.arg(major(device)).arg(minor(device)));
    if (!own)
        return std::nullopt;
    QHash<QString, QString> properties;
    if (const QString usb = usbFolder(system, folder); !usb.isEmpty()) {
        const QString number = system.text(usb + u"/dev"_s);
        addProperties(system.read(u"/run/udev/data/c"_s + number).value_or(QByteArray()),
                      properties);
    }
    addProperties(*own, properties);
    return properties;
}

} // namespace fldc
