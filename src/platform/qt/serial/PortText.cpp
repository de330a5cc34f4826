#include "platform/qt/serial/PortText.h"

#include "platform/RemoteAddress.h"
#include "platform/linux/DeviceFacts.h"
#include "platform/qt/serial/PortListing.h"

#include <optional>

namespace fldc {

using namespace Qt::StringLiterals;

namespace {

constexpr auto usbPrefix = "usb:"_L1;

ChosenPort refuse(const QString& text, const QString& error, const QString& hint)
{
    return {text, {}, error, hint};
}

ChosenPort adapter(const QString& text, const PortListing& ports)
{
    const QString serial = text.sliced(usbPrefix.size());
    if (serial.isEmpty())
        return refuse(text, u"usb: needs the serial number of an adapter."_s,
                      u"Name an adapter without a serial number by its path."_s);
    const DeviceInspector inspector(ports.system());
    QStringList found;
    const QStringList devices = inspector.serialDevices();
    for (const QString& device : devices) {
        if (inspector.hardware(device).serial == serial)
            found.append(device);
    }
    found.sort();
    if (found.isEmpty())
        return refuse(text, u"There is no USB adapter with the serial number %1."_s.arg(serial),
                      u"Is it plugged in? The list of ports shows the serial numbers."_s);
    if (found.size() > 1)
        return refuse(
            text,
            u"Several ports have the serial number %1: %2."_s.arg(serial, found.join(", "_L1)),
            u"Name the port by its path below /dev/serial/by-path."_s);
    return {text, found.first(), {}, {}};
}

/// Number in "COM3", "COM3:" or "3".
std::optional<int> numberIn(const QString& text)
{
    bool plain = false;
    const int number = text.toInt(&plain);
    if (plain && text.front().isDigit())
        return number;
    const int named = portNumber(text);
    return named > 0 ? std::optional(named) : std::nullopt;
}

ChosenPort numbered(int number, const PortListing& ports)
{
    const QString name = portName(number).chopped(1);
    const QString device = ports.devices().value(number);
    if (device.isEmpty())
        return refuse(name, u"There is no port %1."_s.arg(name),
                      u"The list of ports shows which there are."_s);
    return {name, device, {}, {}};
}

} // namespace

ChosenPort choosePort(const QString& text, const PortListing& ports)
{
    if (isRemote(text) && !remoteAddress(text))
        return refuse(text, u"\"%1\" is no line of another machine."_s.arg(text),
                      u"Write rfc2217://HOST:PORT, an IPv6 address in brackets."_s);
    if (text.startsWith(usbPrefix))
        return adapter(text, ports);
    if (const auto number = numberIn(text))
        return numbered(*number, ports);
    if (const QString device = ports.pinned().value(text); !device.isEmpty())
        return {text, device, {}, {}};
    if (text.contains(u'/'))
        return {text, text, {}, {}};
    return refuse(
        text, u"\"%1\" is no port."_s.arg(text),
        u"A port is COM3, 3, a path, usb:SERIAL, rfc2217://HOST:PORT or a pinned name."_s);
}

} // namespace fldc
