#pragma once

#include "platform/linux/LinuxSystem.h"
#include "platform/linux/ProcessTable.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace fldc {

/// Whether a program could use the port now, as far as can be told without opening it. Somebody may
/// hold it unseen, and a driver may refuse: only opening it decides.
enum class PortState {
    Free,
    InUse,        ///< locked, or open in another program, or in this one
    NoPermission, ///< this process may not both read and write it
    NoDevice,     ///< no such file, none that a serial line could be, or no hardware behind it
};

/// What a device is, from /sys. Empty where /sys does not tell.
struct HardwareFacts {
    QString description;  ///< the adapter's own product text
    QString manufacturer; ///< the adapter's own
    QString driver;
    QString vendor;  ///< USB, 4 hexadecimal digits, lower case
    QString product; ///< USB, likewise
    QString serial;  ///< of the USB adapter
    /// For how long the adapter collects what it received before it hands it over, unless the
    /// driver was asked for low latency; nothing when the driver has no such setting.
    std::optional<int> latencyMilliseconds;
};

/// A system service that looks for devices of its own at serial ports.
struct ServiceFacts {
    QString name; ///< of its program
    /// Nothing when it may run unseen.
    std::optional<QList<Process>> processes;
    /// Whether one of these processes has the device open; nothing when their files can't be seen.
    std::optional<bool> holdsDevice;
    /// Whether udev's data tell it to leave the device alone; nothing when there are no such data
    /// or they can't tell.
    std::optional<bool> toldToLeaveAlone;
    /// The property that tells so ("ID_MM_DEVICE_IGNORE=1"), or that gives it the device
    /// ("BRLTTY_BRAILLE_DRIVER=bm"); empty when there is none.
    QString property;
};

/// Everything that can be told about a port without opening it.
struct DeviceFacts {
    QString path;            ///< as asked for
    QString device;          ///< with links followed; the path when there is no such file
    QStringList stableNames; ///< names that stay when adapters are plugged again; by-id first
    PortState state = PortState::NoDevice;

    DeviceNode node;
    bool isSerial = false; ///< false also when the file is missing
    HardwareFacts hardware;

    QString owner; ///< the number of the user that owns the file
    QString group; ///< name of the file's group
    QString
        grantingGroup; ///< who is in it may read and write; empty when access is granted already
    bool grantedAtNextLogin = false; ///< the user is in that group, but logged in before that

    QList<Holder> holders;
    bool holdersComplete = false; ///< false when others may have it open unseen
    std::optional<bool> locked;   ///< nothing when the lock table can't be read
    QList<Process> lockOwners;    ///< pid 0: a process that can't be seen
    QList<ServiceFacts> services; ///< ModemManager and brltty
    /// Who uses the port: the lock's owner before others; pid 0 for one that can't be seen.
    [[nodiscard]] std::optional<Process> user() const;
};

/// Looks at devices without opening one. Processes and locks are looked up when they are first
/// needed and kept: make a new object for each question.
class DeviceInspector {
public:
    explicit DeviceInspector(const LinuxSystem& system);

    /// The state alone: asks no data base of users.
    [[nodiscard]] PortState state(const QString& path);
    [[nodiscard]] DeviceFacts facts(const QString& path);
    /// Whether this process has it open.
    [[nodiscard]] bool isHeldHere(const QString& path);

    /// Devices of all serial ports that the machine has ("/dev/ttyUSB0"), in no order. A port that
    /// the driver keeps in reserve, without hardware behind it, is none.
    [[nodiscard]] QStringList serialDevices() const;
    [[nodiscard]] HardwareFacts hardware(const QString& device) const;

private:
    [[nodiscard]] HardwareFacts hardware(const DeviceNode& node) const;
    [[nodiscard]] std::optional<bool> holdsDevice(const std::optional<QList<Process>>& of,
                                                  const QList<Holder>& holders);
    [[nodiscard]] DeviceFacts look(const QString& path);
    [[nodiscard]] bool isSerial(const DeviceNode& node) const;
    void lookForUsers(DeviceFacts& facts);
    void lookForGroup(DeviceFacts& facts) const;
    [[nodiscard]] QStringList stableNames(const QString& device) const;
    [[nodiscard]] QList<ServiceFacts> services(const DeviceFacts& facts);
    [[nodiscard]] Process lockOwner(qint64 pid, const QList<Holder>& holders);

    const ProcessTable& processes();

    const LinuxSystem& m_system;
    std::optional<ProcessTable> m_processes;
};

} // namespace fldc
