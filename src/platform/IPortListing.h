#pragma once

#include <QString>
#include <QStringList>

namespace fldc {

/// The machine's serial ports under their names, colon included ("COM1:").
///
/// A name means a device only at the moment when it is asked for: adapters come and go, and the
/// numbers that are not pinned in the settings may change. Who opens a port keeps the device path
/// that it found, so that a line in use stays that of the radio that was chosen (SerialControl.h).
class IPortListing {
public:
    virtual ~IPortListing() = default;

    /// Names in listing order; may hold ports of other kinds. Throws PlatformFailure when the
    /// machine can't be asked.
    [[nodiscard]] virtual QStringList portNames() = 0;
    /// Opens the port of that name and closes it again; throws PlatformFailure when that fails.
    virtual void tryOpen(const QString& name) = 0;
    /// Path of the device behind COM@p number: ; empty when there is none.
    [[nodiscard]] virtual QString devicePath(int number) = 0;
};

} // namespace fldc
