#include "fldc/commands/CommandTable.h"
#include "fldc/files/NamedPort.h"
#include "fldc/output/Output.h"
#include "platform/RemoteAddress.h"
#include "platform/linux/DeviceFacts.h"
#include "platform/qt/SettingsFile.h"
#include "platform/qt/serial/PortListing.h"

namespace fldc::cli {

using namespace Qt::StringLiterals;

namespace {

/// An adapter that keeps what it received for this long costs that much per answer.
constexpr int slowAdapter = 16;

struct Check {
    QString subject;
    bool ok;
    QString finding;
    QString hint; ///< empty: nothing to do
};

QString userText(const Process& process)
{
    return process.pid == 0 ? u"a process that can't be seen"_s
                            : u"%1 (process %2)"_s.arg(process.program).arg(process.pid);
}

Check deviceCheck(const DeviceFacts& facts)
{
    if (facts.state == PortState::NoDevice)
        return {facts.path, false, u"There is no such serial device."_s,
                u"Plug the adapter in, or look at fldc ports for its name."_s};
    QString text = facts.device;
    if (!facts.hardware.description.isEmpty())
        text += u", "_s + facts.hardware.description;
    if (!facts.hardware.driver.isEmpty())
        text += u", driver "_s + facts.hardware.driver;
    if (!facts.hardware.vendor.isEmpty())
        text += u", USB %1:%2"_s.arg(facts.hardware.vendor, facts.hardware.product);
    if (!facts.stableNames.isEmpty())
        text += u", also "_s + facts.stableNames.join(u", "_s);
    return {facts.path, true, text + u'.', {}};
}

Check permissionCheck(const DeviceFacts& facts)
{
    const bool allowed = facts.node.readable && facts.node.writable;
    if (allowed)
        return {facts.path, true, u"This user may read and write it."_s, {}};
    QString hint = u"Ask an administrator for the right to use it."_s;
    if (facts.grantedAtNextLogin)
        hint = u"You are in the group %1, but logged in before that: log out and in again."_s.arg(
            facts.grantingGroup);
    else if (!facts.grantingGroup.isEmpty())
        hint = u"Be added to the group %1 and log in again."_s.arg(facts.grantingGroup);
    return {facts.path, false, u"This user may not read and write it."_s, hint};
}

void checkUsers(const DeviceFacts& facts, std::vector<Check>& checks)
{
    for (const Process& owner : facts.lockOwners)
        checks.push_back({facts.path, false, u"It is locked by %1."_s.arg(userText(owner)),
                          u"End that program."_s});
    for (const Holder& holder : facts.holders) {
        if (!holder.isFarEnd && !facts.lockOwners.contains(holder.process))
            checks.push_back({facts.path, false,
                              u"It is open in %1."_s.arg(userText(holder.process)),
                              u"End that program."_s});
    }
    if (facts.lockOwners.isEmpty() && facts.holders.isEmpty())
        checks.push_back({facts.path,
                          true,
                          facts.holdersComplete
                              ? u"No program uses it."_s
                              : u"No program is seen to use it; other users' can't be seen."_s,
                          {}});
}

void checkServices(const DeviceFacts& facts, std::vector<Check>& checks)
{
    for (const ServiceFacts& service : facts.services) {
        if (!service.processes || service.processes->isEmpty())
            continue;
        const bool leaves = service.toldToLeaveAlone.value_or(false);
        const bool holds = service.holdsDevice.value_or(false);
        const QString finding = holds    ? u"%1 runs and holds the device."_s
                                : leaves ? u"%1 runs and is told to leave the device alone."_s
                                         : u"%1 runs and is not known to leave the device alone."_s;
        checks.push_back({facts.path, !holds && leaves, finding.arg(service.name),
                          !holds && leaves ? QString() : u"Stop it, or tell it by a udev rule."_s});
    }
}

void checkAdapter(const DeviceFacts& facts, std::vector<Check>& checks)
{
    const auto latency = facts.hardware.latencyMilliseconds;
    if (!latency)
        return;
    const bool slow = *latency >= slowAdapter;
    checks.push_back(
        {facts.path, !slow, u"The adapter collects bytes for %1 ms."_s.arg(*latency),
         slow ? u"A latency timer of 1 ms makes short exchanges faster."_s : QString()});
}

std::vector<Check> checksOf(const DeviceFacts& facts)
{
    std::vector<Check> checks{deviceCheck(facts)};
    if (facts.state == PortState::NoDevice)
        return checks;
    checks.push_back(permissionCheck(facts));
    checkUsers(facts, checks);
    checkServices(facts, checks);
    checkAdapter(facts, checks);
    return checks;
}

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
        for (const Check& check : checksOf(facts))
            tell(context.output, check);
    }
    if (context.port.device.isEmpty())
        return done(u"%1 ports were looked at."_s.arg(devices.size()));
    if (isRemote(context.port.device) && remoteAddress(context.port.device))
        return done(u"Nothing is known of a line of another machine until it is opened."_s);
    if (isRemote(context.port.device) || state != PortState::Free)
        return failure(Exit::Port, Code::Success, u"The port can't be used now."_s,
                       u"See the findings above."_s);
    return done(u"The port can be used, as far as can be seen without opening it."_s);
}

} // namespace fldc::cli
