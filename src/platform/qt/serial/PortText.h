#pragma once

#include <QString>

namespace fldc {

class PortListing;

/// The port that a text means, or why it means none.
struct ChosenPort {
    QString name;   ///< "COM3" for a numbered port, else the text itself
    QString device; ///< path or remote line; empty when the text means no port. The device may be
                    ///< missing.
    QString error;  ///< what is wrong with the text; empty when there is a device
    QString hint;   ///< what to do about it
};

/// Understands a pinned name (any name in the section [Ports] of the settings), "COM3" or "3", a
/// path ("/dev/ttyUSB0", "./radio"), "usb:SERIAL", the serial number of a USB adapter, and
/// "rfc2217://HOST:PORT", a line of another machine. Looks at /sys and the settings; opens no port
/// and asks no network.
[[nodiscard]] ChosenPort choosePort(const QString& text, const PortListing& ports);

} // namespace fldc
