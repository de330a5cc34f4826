#include "platform/qt/serial/PortListing.h"

#include "platform/RemoteAddress.h"
#include "platform/linux/DeviceFacts.h"
#include "platform/linux/PortFindings.h"
#include "platform/qt/SettingsFile.h"
#include "platform/qt/serial/PortWatch.h"

namespace fldc {

namespace {

constexpr const char* listVariable = "RV4100_FLDC_PORTS";

// Of a remote line nothing can be seen: it may be tried.
bool mayBeTried(const QString& path, DeviceInspector& inspector)
{
    return isRemote(path) ? remoteAddress(path).has_value()
                          : inspector.state(path) == PortState::Free;
}

IPortListing::Port entryOf(int number, const QString& path, DeviceInspector& inspector)
{
    const bool remote = isRemote(path);
    const bool available = mayBeTried(path, inspector);
    return {portName(number), available, !available && !remote && inspector.isHeldHere(path)};
}

IPortListing::Details detailsOf(int number, const QString& path, DeviceInspector& inspector)
{
    if (isRemote(path))
        return {portName(number), QStringLiteral("Line of another machine"), {}, path, {}, {}};
    const DeviceFacts facts = inspector.facts(path);
    const PortObstacle obstacle = portObstacle(facts).value_or(PortObstacle());
    return {portName(number),      facts.hardware.description,
            facts.hardware.serial, path,
            obstacle.what,         obstacle.remedy};
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
        list.append(entryOf(port.key(), port.value(), inspector));
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

QList<IPortListing::Details> PortListing::details()
{
    PortMap known = devices();
    if (!qEnvironmentVariableIsSet(listVariable)) {
        for (auto port = m_given.constBegin(); port != m_given.constEnd(); ++port)
            known.insert(port.key(), known.value(port.key(), port.value()));
    }
    DeviceInspector inspector(m_system);
    QList<Details> list;
    for (auto port = known.constBegin(); port != known.constEnd(); ++port)
        list.append(detailsOf(port.key(), port.value(), inspector));
    return list;
}

std::shared_ptr<void> PortListing::watch(std::function<void()> changed)
{
    return std::make_shared<PortWatch>([this] { return devices(); }, m_system, std::move(changed));
}

QMap<QString, QString> PortListing::pinned() const
{
    QMap<QString, QString> pins = m_settings.section(QStringLiteral("Ports"));
    // The system would take the part before it for the path: another device.
    pins.removeIf([](const auto& pin) { return pin.value().contains(QChar::Null); });
    return pins;
}

QMap<QString, QString> PortListing::namedLines() const
{
    if (qEnvironmentVariableIsSet(listVariable))
        return {};
    QMap<QString, QString> lines = pinned();
    lines.removeIf(
        [](const auto& pin) { return portNumber(pin.key()) != 0 || !remoteAddress(pin.value()); });
    return lines;
}

PortMap PortListing::devices() const
{
    if (qEnvironmentVariableIsSet(listVariable))
        return parsePortList(qEnvironmentVariable(listVariable));

    PortMap numbered;
    const QMap<QString, QString> pins = pinned();
    for (auto pin = pins.begin(); pin != pins.end(); ++pin) {
        const int number = portNumber(pin.key());
        if (number > 0 && !pin.value().isEmpty())
            numbered.insert(number, pin.value());
    }
    const PortMap ports = numberPorts(
        numbered, DeviceInspector(m_system).serialDevices(),
        [this](const QString& path) {
            const QString real = m_system.realPath(path);
            return real.isEmpty() ? path : real;
        },
        m_given);
    m_given.insert(ports);
    return ports;
}

} // namespace fldc
