#pragma once

#include <QList>
#include <QString>

#include <functional>
#include <memory>

namespace fldc {

/// The machine's serial ports under their names, colon included ("COM1:"). Looking never opens a
/// port: opening raises DTR and RTS, which key the transmitter of some radios.
///
/// A name means a device only at the moment when it is asked for: adapters come and go. As long as
/// the program lives, a number that is not pinned in the settings belongs to the path that got it
/// first, also while nothing is there. Who opens a port keeps the device path that it found, so
/// that a line in use stays that of the radio that was chosen (SerialControl.h).
class IPortListing {
public:
    virtual ~IPortListing() = default;

    struct Port {
        QString name;
        bool available = false;
        bool heldHere = false; ///< this program uses it, and nobody else is known to
        friend bool operator==(const Port&, const Port&) = default;
    };
    /// In listing order; may hold ports of other kinds. Throws PlatformFailure when the machine
    /// can't be asked.
    [[nodiscard]] virtual QList<Port> ports() = 0;
    /// Whether the port of that name could be opened now, as far as a look can tell: its device is
    /// there, may be read and written, and nobody is seen to use it, this program included. A line
    /// of another machine can't be looked at: true says that it may be tried.
    [[nodiscard]] virtual bool isAvailable(const QString& name) = 0;
    /// Path of the device behind COM@p number: , or where its remote line is offered
    /// (RemoteAddress.h); empty when there is none.
    [[nodiscard]] virtual QString devicePath(int number) = 0;

    /// What a person is told of a port, each text empty where there is nothing to tell.
    struct Details {
        QString name;
        QString adapter; ///< its own product text
        QString serialNumber;
        QString path;
        QString obstacle; ///< why it can't be used now: "no adapter", "in use by ..."
        QString remedy;   ///< what to do about it, a sentence
    };
    /// Of all ports that there are or were, in the order of ports(). A look at every process of the
    /// machine: not for the middle of an operation.
    [[nodiscard]] virtual QList<Details> details() { return {}; }
    /// Has @p changed called, while events are served, when ports have come or gone or their rights
    /// have changed, until the result is let go of. Nothing is asked in between.
    [[nodiscard]] virtual std::shared_ptr<void> watch(std::function<void()> /*changed*/)
    {
        return {};
    }
};

} // namespace fldc
