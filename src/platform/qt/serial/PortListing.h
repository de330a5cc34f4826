#pragma once

#include "platform/IPortListing.h"
#include "platform/linux/LinuxSystem.h"
#include "platform/qt/serial/PortNames.h"

namespace fldc {

class SettingsFile;

/// The machine's serial ports, asked afresh by every call: those that the section [Ports] of the
/// settings file pins to a number (COM3=/dev/serial/by-id/…), then all others that the system has.
/// The environment variable RV4100_FLDC_PORTS, when set, replaces the whole listing
/// ("COM1=/dev/ttyUSB0;COM7=/dev/ttyS0"; empty: no ports). Either may name a line of another
/// machine
/// ("COM9=rfc2217://bench:2217"), of which nothing is known until it is opened: it is listed as
/// available, and nobody is asked.
///
/// QSerialPortInfo would find the others too, but it opens built-in ports to learn their type.
class PortListing final : public IPortListing {
public:
    explicit PortListing(const SettingsFile& settings,
                         const LinuxSystem& system = LinuxSystem::thisMachine());

    /// In the order of the numbers. A pinned port is listed even when its device is missing.
    [[nodiscard]] QList<Port> ports() override;
    [[nodiscard]] bool isAvailable(const QString& name) override;
    [[nodiscard]] QString devicePath(int number) override;
    [[nodiscard]] QList<Details> details() override;
    [[nodiscard]] std::shared_ptr<void> watch(std::function<void()> changed) override;

    [[nodiscard]] PortMap devices() const;
    /// Everything in the section [Ports], whatever its name: the names that users gave to devices.
    [[nodiscard]] QMap<QString, QString> pinned() const;
    /// Remote lines of that section that have a name instead of a number; none where
    /// RV4100_FLDC_PORTS replaces the listing.
    [[nodiscard]] QMap<QString, QString> namedLines() const;
    [[nodiscard]] const LinuxSystem& system() const { return m_system; }

private:
    const SettingsFile& m_settings;
    const LinuxSystem& m_system;
    mutable PortMap m_given; ///< every number that a path has had
};

} // namespace fldc
