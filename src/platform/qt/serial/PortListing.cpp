#include "platform/qt/serial/PortListing.h"

#include "platform/qt/SettingsFile.h"
#include "platform/qt/serial/SerialLine.h"

#include <QFileInfo>
#include <QSerialPortInfo>

namespace fldc {

namespace {

QString realPath(const QString& path)
{
    const QString real = QFileInfo(path).canonicalFilePath();
    return real.isEmpty() ? path : real;
}

} // namespace

PortListing::PortListing(const SettingsFile& settings) : m_settings(settings) {}

QStringList PortListing::portNames()
{
    QStringList names;
    const PortMap present = ports();
    for (auto port = present.keyBegin(); port != present.keyEnd(); ++port)
        names.append(portName(*port));
    return names;
}

void PortListing::tryOpen(const QString& name)
{
    const QString path = devicePath(portNumber(QStringView(name).trimmed()));
    if (path.isEmpty())
        throw serialFailure(SerialFailure::InvalidPortNumber, name);
    const SerialLine line(path);
}

QString PortListing::devicePath(int number)
{
    return ports().value(number);
}

PortMap PortListing::ports() const
{
    if (qEnvironmentVariableIsSet("RV4100_FLDC_PORTS"))
        return parsePortList(qEnvironmentVariable("RV4100_FLDC_PORTS"));

    PortMap pinned;
    const QMap<QString, QString> pins = m_settings.section(QStringLiteral("Ports"));
    for (auto pin = pins.begin(); pin != pins.end(); ++pin) {
        const int number = portNumber(pin.key());
        if (number > 0 && !pin.value().isEmpty())
            pinned.insert(number, pin.value());
    }
    QStringList devices;
    const QList<QSerialPortInfo> found = QSerialPortInfo::availablePorts();
    for (const QSerialPortInfo& port : found)
        devices.append(port.systemLocation());
    return numberPorts(pinned, devices, realPath);
}

} // namespace fldc
