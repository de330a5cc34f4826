#pragma once

#include <QString>
#include <QStringList>

namespace fldc {

/// The machine's serial ports under their names, colon included ("COM1:").
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
