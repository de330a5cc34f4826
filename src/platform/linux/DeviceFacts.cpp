#include "platform/linux/DeviceFacts.h"

#include "platform/linux/LockTable.h"
#include "platform/linux/Sysfs.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

#include <sys/stat.h>
#include <unistd.h>

namespace fldc {

using namespace Qt::StringLiterals;

namespace {

struct Service {
    QLatin1StringView name;
    std::array<QLatin1StringView, 3> ignoringProperties;
    QLatin1StringView claimingProperty;
};

// The properties are those of ModemManager's own udev rules (the last for versions before 1.8) and
// of brltty's, which has none that keeps it off.
constexpr std::array knownServices{
    Service{"ModemManager"_L1,
            {"ID_MM_DEVICE_IGNORE"_L1, "ID_MM_PORT_IGNORE"_L1, "ID_MM_TTY_BLACKLIST"_L1},
            ""_L1},
    Service{"brltty"_L1, {}, "BRLTTY_BRAILLE_DRIVER"_L1},
};

} // namespace

std::optional<Process> DeviceFacts::user() const
{
    if (!lockOwners.isEmpty())
        return lockOwners.first();
    const auto holder =
        std::ranges::find_if(holders, [](const Holder& one) { return !one.isFarEnd; });
    return holder == holders.end() ? std::nullopt : std::optional(holder->process);
}

DeviceInspector::DeviceInspector(const LinuxSystem& system) : m_system(system) {}

PortState DeviceInspector::state(const QString& path)
{
    return look(path).state;
}

DeviceFacts DeviceInspector::facts(const QString& path)
{
    DeviceFacts facts = look(path);
    if (facts.node.error != 0)
        return facts;
    facts.stableNames = stableNames(facts.device);
    facts.hardware = hardware(facts.node);
    facts.owner = QString::number(facts.node.owner);
    facts.group = m_system.groupName(facts.node.group);
    lookForGroup(facts);
    lookForUsers(facts);
    facts.services = services(facts);
    return facts;
}

bool DeviceInspector::isHeldHere(const QString& path)
{
    const QString device = m_system.realPath(path);
    const auto holders = processes().holders(device, m_system.node(device));
    return std::ranges::any_of(
        holders, [](const Holder& holder) { return holder.process.pid == ::getpid(); });
}

// Stops as soon as the state is known.
DeviceFacts DeviceInspector::look(const QString& path)
{
    DeviceFacts facts;
    facts.path = path;
    const QString real = m_system.realPath(path);
    facts.device = real.isEmpty() ? path : real;
    facts.node = m_system.node(facts.device);
    facts.isSerial = isSerial(facts.node);
    if (!facts.isSerial) {
        if (facts.node.error == EACCES)
            facts.state = PortState::NoPermission;
        return facts;
    }
    if (!facts.node.readable || !facts.node.writable) {
        facts.state = PortState::NoPermission;
        return facts;
    }
    const bool locked = !LockTable(m_system).owners(facts.node).isEmpty();
    if (!locked)
        facts.holders = processes().holders(facts.device, facts.node);
    facts.state = locked || facts.user() ? PortState::InUse : PortState::Free;
    return facts;
}

bool DeviceInspector::isSerial(const DeviceNode& node) const
{
    if (!node.isCharacterDevice())
        return false;
    if (node.ptyIndex())
        return true;
    const QString folder = sysfsFolder(m_system, node.device);
    if (folder.isEmpty()) // no hardware; or no /sys, which could tell
        return m_system.folder(u"/sys/dev/char"_s).names.isEmpty();
    return m_system.linkText(folder + u"/subsystem"_s).endsWith("/tty"_L1) &&
           hasHardware(m_system, folder);
}

void DeviceInspector::lookForUsers(DeviceFacts& facts)
{
    facts.holders = processes().holders(facts.device, facts.node);
    facts.holdersComplete = processes().isComplete();
    const LockTable locks(m_system);
    if (!locks.isKnown())
        return;
    const QList<qint64> owners = locks.owners(facts.node);
    facts.locked = !owners.isEmpty();
    for (const qint64 pid : owners)
        facts.lockOwners.append(lockOwner(pid, facts.holders));
}

// The table names who took the lock. When that process has ended, its number may be another's.
Process DeviceInspector::lockOwner(qint64 pid, const QList<Holder>& holders)
{
    const bool holds = std::ranges::any_of(
        holders, [pid](const Holder& holder) { return holder.process.pid == pid; });
    if (pid == 0 || (processes().seesFilesOf(pid) && !holds))
        return {};
    Process owner = processes().process(pid);
    return owner.program.isEmpty() ? Process() : owner;
}

void DeviceInspector::lookForGroup(DeviceFacts& facts) const
{
    constexpr mode_t both = S_IRGRP | S_IWGRP;
    const DeviceNode& node = facts.node;
    // The owner's own bits count for the owner, whatever the group may.
    if ((node.readable && node.writable) || node.hasAcl || node.owner == ::geteuid() ||
        (node.mode & both) != both)
        return;
    facts.grantingGroup = facts.group;
    facts.grantedAtNextLogin = m_system.joinsAtNextLogin(node.group);
}

QStringList DeviceInspector::stableNames(const QString& device) const
{
    QStringList found;
    for (const QString& folder : {u"/dev/serial/by-id"_s, u"/dev/serial/by-path"_s}) {
        QStringList names = m_system.folder(folder).names;
        names.sort();
        for (const QString& name : std::as_const(names)) {
            if (const QString link = folder + u'/' + name; m_system.realPath(link) == device)
                found.append(link);
        }
    }
    return found;
}

QList<ServiceFacts> DeviceInspector::services(const DeviceFacts& facts)
{
    const auto udev =
        udevProperties(m_system, facts.node.device, sysfsFolder(m_system, facts.node.device));
    QList<ServiceFacts> found;
    for (const Service& service : knownServices) {
        ServiceFacts about{
            service.name, processes().named(service.name), std::nullopt, std::nullopt, {}};
        if (udev && !service.ignoringProperties.front().isEmpty())
            about.toldToLeaveAlone = false;
        for (const QLatin1StringView name : service.ignoringProperties) {
            const QString value = udev ? udev->value(name) : QString();
            if (value != "1"_L1 && value.compare("true"_L1, Qt::CaseInsensitive) != 0)
                continue;
            about.toldToLeaveAlone = true;
            about.property = name + u'=' + value;
            break;
        }
        if (udev && udev->contains(service.claimingProperty))
            about.property =
                service.claimingProperty + u'=' + udev->value(service.claimingProperty);
        about.holdsDevice = holdsDevice(about.processes, facts.holders);
        found.append(about);
    }
    return found;
}

std::optional<bool> DeviceInspector::holdsDevice(const std::optional<QList<Process>>& of,
                                                 const QList<Holder>& holders)
{
    if (!of)
        return std::nullopt;
    bool allSeen = true;
    for (const Process& process : *of) {
        const auto isThis = [&](const Holder& holder) { return holder.process == process; };
        if (std::ranges::any_of(holders, isThis))
            return true;
        allSeen = allSeen && processes().seesFilesOf(process.pid);
    }
    return allSeen ? std::optional(false) : std::nullopt;
}

QStringList DeviceInspector::serialDevices() const
{
    QStringList devices;
    const QString classFolder = u"/sys/class/tty"_s;
    const QStringList names = m_system.folder(classFolder).names;
    for (const QString& name : names) {
        const QString folder = m_system.realPath(classFolder + u'/' + name);
        if (!folder.isEmpty() && hasHardware(m_system, folder))
            devices.append(u"/dev/"_s + name);
    }
    return devices;
}

HardwareFacts DeviceInspector::hardware(const QString& device) const
{
    return hardware(m_system.node(device));
}

HardwareFacts DeviceInspector::hardware(const DeviceNode& node) const
{
    HardwareFacts facts;
    const QString folder =
        node.isCharacterDevice() ? sysfsFolder(m_system, node.device) : QString();
    if (folder.isEmpty())
        return facts;
    facts.driver = driverOf(m_system, folder);
    bool given = false;
    const int latency = m_system.text(folder + u"/device/latency_timer"_s).toInt(&given);
    if (given)
        facts.latencyMilliseconds = latency;
    const QString usb = usbFolder(m_system, folder);
    if (usb.isEmpty())
        return facts;
    facts.description = m_system.text(usb + u"/product"_s);
    facts.manufacturer = m_system.text(usb + u"/manufacturer"_s);
    facts.vendor = m_system.text(usb + u"/idVendor"_s);
    facts.product = m_system.text(usb + u"/idProduct"_s);
    facts.serial = m_system.text(usb + u"/serial"_s);
    return facts;
}

const ProcessTable& DeviceInspector::processes()
{
    if (!m_processes)
        m_processes.emplace(m_system);
    return *m_processes;
}

} // namespace fldc
