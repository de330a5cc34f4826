#pragma once

#include <QHash>
#include <QString>

#include <optional>

#include <sys/types.h>

namespace fldc {

class LinuxSystem;

/// The folder in /sys of a device with this number; empty when /sys has none (near ends of
/// pseudo-terminals have none).
[[nodiscard]] QString sysfsFolder(const LinuxSystem& system, dev_t device);
/// Whether a terminal has a driver's hardware behind it: neither a console nor a port that a driver
/// keeps in reserve.
[[nodiscard]] bool hasHardware(const LinuxSystem& system, const QString& folder);
/// The folder of the USB device that the device belongs to; empty when it belongs to none.
[[nodiscard]] QString usbFolder(const LinuxSystem& system, const QString& folder);
/// Name of the driver; empty when there is none.
[[nodiscard]] QString driverOf(const LinuxSystem& system, const QString& folder);

/// udev's properties of the device and of the USB device that it belongs to; nothing when udev has
/// written nothing about the device itself.
[[nodiscard]] std::optional<QHash<QString, QString>>
udevProperties(const LinuxSystem& system, dev_t device, const QString& folder);

} // namespace fldc
