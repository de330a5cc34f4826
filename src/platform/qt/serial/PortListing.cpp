#include "platform/qt/serial/PortListing.h"

#include "platform/RemoteAddress.h"
#include "platform/linux/DeviceFacts.h"
#include "platform/qt/SettingsFile.h"

namespace fldc {

namespace {

// Of a remote line nothing can be seen: it may be tried.
bool mayBeTried(const QString& path, DeviceInspector& inspector)
{
    return isRemote(path) ? remoteAddress(path).has_value()
                          : inspector.state(path) == PortState::Free;
}

} // namespace

PortListing::PortListing(const SettingsFile& settings, const LinuxSystem& system)
    : m_settings(settings), m_system(system)
{
}

QList<IPortListing::Port> PortListing::ports()
{
    QList<Port> list;
    DeviceInspector inspector(m_system);
    const PortMap present = devices();
    for (auto port = present.begin(); port != present.end(); ++port)
        list.append({portName(port.key()), mayBeTried(port.value(), inspector)});
    return list;
}

bool PortListing::isAvailable(const QString& name)
{
    const QString path = devicePath(portNumber(QStringView(name).trimmed()));
    DeviceInspector inspector(m_system);
    return !path.isEmpty() && mayBeTried(path, inspector);
}

QString PortListing::devicePath(int number)
{
    return devices().value(number);
}

QMap<QString, QString> PortListing::pinned() const
{
    QMap<QString, QString> pins = m_settings.section(QStringLiteral("Ports"));
    // The system would take the part before it for the path: another device.
    pins.removeIf([](const auto& pin) { return pin.value().contains(QChar::Null); });
    return pins;
}

PortMap PortListing::devices() const
{
    if (qEnvironmentVariableIsSet("RV4100_FLDC_PORTS"))
        return parsePortList(qEnvironmentVariable("RV4100_FLDC_PORTS"));

    PortMap numbered;
    const QMap<QString, QString> pins = pinned();
    for (auto pin = pins.begin(); pin != pins.end(); ++pin) {
        const int number = portNumber(pin.key());
        if (number > 0 && !pin.value().isEmpty())
            numbered.insert(number, pin.value());
    }
    return numberPorts(numbered, DeviceInspector(m_system).serialDevices(),
                       [this](const QString& path) {
                           const QString real = m_system.realPath(path);
                           return real.isEmpty() ? path : real;
                       });
}

} // namespace fldc
