#include "port/PortEnumeration.h"

#include "platform/IPortListing.h"
#include "platform/PlatformFailure.h"
#include "shared/NumberText.h"

namespace fldc {

namespace {

constexpr QStringView namePrefix = u"COM";

QString entryOf(const IPortListing::Port& port)
{
    return port.available || port.heldHere ? port.name.trimmed()
                                           : port.name.trimmed() + QStringLiteral(" (unavailable)");
}

} // namespace

std::int32_t GetSerialPorts(IPortListing& ports, QStringList& entries)
{
    entries.clear();
    try {
        for (const IPortListing::Port& port : ports.ports()) {
            if (port.name.startsWith(namePrefix))
                entries.append(entryOf(port));
        }
    } catch (...) {
        entries.clear(); // a machine that can't be asked has no ports
    }
    const auto count = static_cast<std::int32_t>(entries.size());
    if (count == 0)
        entries.append(QStringLiteral("No available ports"));
    return count;
}

bool PortAvailable(IPortListing& ports, const QString& name)
{
    try {
        return ports.isAvailable(name);
    } catch (...) {
        return false;
    }
}

std::int32_t PortNumber(const QString& text)
{
    if (const auto number = readNumber(text))
        return *number;
    const qsizetype colon = text.indexOf(u':');
    if (colon < 0)
        throw PlatformFailure(FailureNumber::InvalidArgument,
                              QStringLiteral("no serial port: plug in the adapter"));
    if (colon < namePrefix.size())
        throw PlatformFailure(FailureNumber::InvalidArgument);
    return readNumber(QStringView(text).first(colon).sliced(namePrefix.size())).value_or(0);
}

} // namespace fldc
