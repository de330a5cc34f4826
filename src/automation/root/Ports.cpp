#include "automation/root/Ports.h"

#include "platform/IPortListing.h"
#include "platform/RemoteAddress.h"
#include "platform/linux/DeviceFacts.h"
#include "port/PortEnumeration.h"

#include <QDBusArgument>
#include <QDBusMetaType>

namespace fldc {

namespace {

// Ports of other kinds ("LPT1:") are listed, too.
bool isSerialPort(const QString& name)
{
    return name.startsWith(QLatin1String("COM")) && PortNumber(name) > 0;
}

} // namespace

QDBusArgument& operator<<(QDBusArgument& argument, const PortRecord& port)
{
    argument.beginStructure();
    argument << port.name << port.device << port.description << port.serialNumber << port.usable;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, PortRecord& port)
{
    argument.beginStructure();
    argument >> port.name >> port.device >> port.description >> port.serialNumber >> port.usable;
    argument.endStructure();
    return argument;
}

QList<PortRecord> listPorts(IPortListing& listing)
{
    const DeviceInspector inspector(LinuxSystem::thisMachine());
    QList<PortRecord> records;
    const auto ports = listing.ports();
    for (const IPortListing::Port& port : ports) {
        if (!isSerialPort(port.name))
            continue;
        const QString device = listing.devicePath(PortNumber(port.name));
        const HardwareFacts hardware = inspector.hardware(device);
        const QString description =
            isRemote(device) ? QStringLiteral("line of another machine") : hardware.description;
        records.append({port.name, device, description, hardware.serial, port.available});
    }
    return records;
}

void registerRootTypes()
{
    qDBusRegisterMetaType<PortRecord>();
    qDBusRegisterMetaType<QList<PortRecord>>();
    qDBusRegisterMetaType<InterfaceValues>();
    qDBusRegisterMetaType<ManagedObjects>();
}

} // namespace fldc
