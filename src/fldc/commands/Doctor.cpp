#include "fldc/commands/CommandTable.h"
#include "fldc/files/NamedPort.h"
#include "fldc/output/Output.h"
#include "platform/RemoteAddress.h"
#include "platform/linux/DeviceFacts.h"
#include "platform/linux/PortFindings.h"
#include "platform/qt/SettingsFile.h"
#include "platform/qt/serial/PortListing.h"
#include "shared/NumberText.h"

namespace fldc::cli {

using namespace Qt::StringLiterals;

namespace {

struct Check {
    QString subject;
    bool ok;
    QString finding;
    QString hint; ///< empty: nothing to do
};

Check remoteCheck(const QString& device)
{
    const auto address = remoteAddress(device);
    if (!address)
        return {device, false, u"It names no line of another machine."_s,
                u"Write rfc2217://HOST:PORT, an IPv6 address in brackets."_s};
    return {
        device,
        true,
        u"It is a line of another machine: %1, port %2. Whether it is there and free shows only "
        "when it is opened."_s.arg(address->host)
            .arg(address->port),
        {}};
}

void tell(Output& output, const Check& check)
{
    output.tell(kind::check, makeObject(kind::check, {{"subject"_L1, validText(check.subject)},
                                                      {"ok"_L1, check.ok},
                                                      {"finding"_L1, validText(check.finding)},
                                                      {"hint"_L1, validText(check.hint)}}));
    output.print((check.ok ? u"ok   "_s : u"!    "_s) + check.subject + u": "_s + check.finding +
                 (check.hint.isEmpty() ? QString() : u"\n     "_s + check.hint) + u'\n');
}

} // namespace

Outcome runDoctor(Context& context)
{
    QStringList devices{context.port.device};
    if (context.port.device.isEmpty()) {
        const SettingsFile settings(SettingsFile::defaultPath());
        devices = PortListing(settings).devices().values();
    }
    DeviceInspector inspector(LinuxSystem::thisMachine());
    PortState state = PortState::Free;
    for (const QString& device : devices) {
        if (isRemote(device)) {
            tell(context.output, remoteCheck(device));
            continue;
        }
        const DeviceFacts facts = inspector.facts(device);
        state = facts.state;
        for (const PortFinding& found : findingsOf(facts))
            tell(context.output, {facts.path, found.ok, found.text, found.hint});
    }
    if (context.port.device.isEmpty())
        return done(u"Looked at %1."_s.arg(counted(std::ssize(devices), u"port")));
    if (isRemote(context.port.device) && remoteAddress(context.port.device))
        return done(u"Nothing is known of a line of another machine until it is opened."_s);
    if (isRemote(context.port.device) || state != PortState::Free)
        return failure(Exit::Port, Code::Success, context.port.name + u" can't be used now."_s,
                       u"See the findings above."_s);
    return done(u"The port can be used, as far as can be seen without opening it."_s);
}

} // namespace fldc::cli
