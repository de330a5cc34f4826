#pragma once

#include "platform/IPortListing.h"
#include "platform/qt/serial/PortNames.h"

namespace fldc {

class SettingsFile;

/// The machine's serial ports, asked afresh by every call: those that the section [Ports] of the
/// settings file pins to a number (COM3=/dev/serial/by-id/…), then all others that Qt finds. The
/// environment variable RV4100_FLDC_PORTS, when set, replaces the whole listing
/// ("COM1=/dev/ttyUSB0;COM7=/dev/ttyS0"; empty: no ports).
class PortListing final : public IPortListing {
public:
    explicit PortListing(const SettingsFile& settings);

    /// In the order of the numbers. A pinned port is listed even when its device is missing.
    [[nodiscard]] QStringList portNames() override;
    /// Opens as the serial control does (see SerialLine) but leaves the line settings alone.
    void tryOpen(const QString& name) override;
    [[nodiscard]] QString devicePath(int number) override;

private:
    [[nodiscard]] PortMap ports() const;

    const SettingsFile& m_settings;
};

} // namespace fldc
