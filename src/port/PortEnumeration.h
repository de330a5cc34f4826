#pragma once

#include <QString>
#include <QStringList>

#include <cstdint>

namespace fldc {

class IPortListing;

// Port entry text: the port's name with its colon ("COM1:"), followed by " (unavailable)" when it
// can't be opened at this moment, unless it is this program that uses it. Both functions look;
// neither opens a port.

/// Fills @p entries with the machine's COM ports in listing order and returns their number. With
/// none, or when the machine can't be asked, the result is 0 and the list holds "No available
/// ports".
std::int32_t GetSerialPorts(IPortListing& ports, QStringList& entries);

/// True when the port of that name could be opened at this moment. Never throws.
[[nodiscard]] bool PortAvailable(IPortListing& ports, const QString& name);

/// Port number that a number, or a port entry text, stands for; 0 for "COMx:". Throws
/// PlatformFailure (invalid argument) for text without a colon behind its third character: what a
/// machine lists that has no ports.
[[nodiscard]] std::int32_t PortNumber(const QString& text);

} // namespace fldc
