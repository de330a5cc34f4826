#include "fldc/commands/CommandTable.h"
#include "fldc/commands/Steps.h"
#include "fldc/gang/Gang.h"
#include "fldc/options/Options.h"
#include "fldc/output/Output.h"
#include "platform/RemoteAddress.h"
#include "platform/linux/DeviceFacts.h"
#include "platform/qt/SettingsFile.h"
#include "platform/qt/serial/PortListing.h"

#include <QFileInfo>

#include <algorithm>

namespace fldc::cli {

using namespace Qt::StringLiterals;

namespace {

// Numbered ports that are free, and all remote lines that have a number or a name: whether one of
// these is free its server says when it is opened.
std::vector<NamedPort> freePorts()
{
    const SettingsFile settings(SettingsFile::defaultPath());
    const PortListing listing(settings);
    const PortMap devices = listing.devices();
    const auto named = listing.namedLines();
    DeviceInspector inspector(LinuxSystem::thisMachine());
    std::vector<NamedPort> ports;
    QStringList remote;
    const auto addRemote = [&](const QString& name, const QString& line) {
        if (remote.contains(line, Qt::CaseInsensitive))
            return;
        remote.append(line);
        ports.push_back({name, line});
    };
    for (auto each = devices.constBegin(); each != devices.constEnd(); ++each) {
        const QString name = u"COM%1"_s.arg(each.key());
        if (isRemote(each.value()))
            addRemote(name, each.value());
        else if (inspector.state(each.value()) == PortState::Free)
            ports.push_back({name, each.value()});
    }
    for (auto each = named.constBegin(); each != named.constEnd(); ++each)
        addRemote(each.key(), each.value());
    return ports;
}

// A port that is missing now may come with its adapter; that is told by its own unit.
std::optional<Outcome> namePorts(const Context& context, std::vector<NamedPort>& ports)
{
    Options one = context.options;
    QStringList devices;
    for (const std::string& name : context.options.ports) {
        one.port = name;
        NamedPort port;
        if (auto ended = namePort(one, true, port))
            return ended;
        const QString found = QFileInfo(port.device).canonicalFilePath();
        const QString real = found.isEmpty() ? port.device : found;
        if (devices.contains(real))
            return usageError(u"Two of the ports named are one: "_s + oneLine(port.device) + u'.',
                              u"Name each port once."_s);
        devices.append(real);
        ports.push_back(port);
    }
    if (context.options.allPorts)
        ports = freePorts();
    if (ports.empty())
        return context.options.allPorts
                   ? failure(Exit::Port, Code::PortDoesNotExist, u"No port is free."_s,
                             u"Plug the adapters in; fldc ports tells who uses a port."_s)
                   : usageError(u"No port was named."_s, u"Name them with --port, or all free "
                                                         "ones with --all."_s);
    return std::nullopt;
}

} // namespace

Outcome runGang(Context& context)
{
    std::vector<NamedPort> ports;
    if (auto ended = namePorts(context, ports))
        return *ended;
    {
        LoadedFirmware firmware;
        if (auto ended = loadFirmware(context, Compression::None, firmware))
            return *ended;
        if (auto ended = refuseFpga(context, firmware))
            return *ended;
    }
    return Gang(context, std::move(ports)).run();
}

} // namespace fldc::cli
