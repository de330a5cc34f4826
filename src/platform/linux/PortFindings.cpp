#include "platform/linux/PortFindings.h"

#include "platform/linux/DeviceFacts.h"

#include <algorithm>
#include <array>

#include <unistd.h>

namespace fldc {

using namespace Qt::StringLiterals;

namespace {

/// An adapter that keeps what it received for this long costs that much per answer.
constexpr int slowAdapter = 16;

QString userText(const Process& process)
{
    return process.pid == 0 ? u"a process that can't be seen"_s
                            : u"%1 (process %2)"_s.arg(process.program).arg(process.pid);
}

PortFinding deviceFinding(const DeviceFacts& facts)
{
    if (facts.state == PortState::NoDevice)
        return {false, u"There is no such serial device."_s,
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
    return {true, text + u'.', {}};
}

PortFinding permissionFinding(const DeviceFacts& facts)
{
    const bool allowed = facts.node.readable && facts.node.writable;
    if (allowed)
        return {true, u"This user may read and write it."_s, {}};
    QString hint = u"Ask an administrator for the right to use it."_s;
    if (facts.grantedAtNextLogin)
        hint = u"You are in the group %1, but logged in before that: log out and in again."_s.arg(
            facts.grantingGroup);
    else if (!facts.grantingGroup.isEmpty())
        hint = u"Be added to the group %1 and log in again."_s.arg(facts.grantingGroup);
    return {false, u"This user may not read and write it."_s, hint};
}

void findUsers(const DeviceFacts& facts, std::vector<PortFinding>& findings)
{
    for (const Process& owner : facts.lockOwners)
        findings.push_back(
            {false, u"It is locked by %1."_s.arg(userText(owner)), u"End that program."_s});
    for (const Holder& holder : facts.holders) {
        if (!holder.isFarEnd && !facts.lockOwners.contains(holder.process))
            findings.push_back({false, u"It is open in %1."_s.arg(userText(holder.process)),
                                u"End that program."_s});
    }
    if (facts.lockOwners.isEmpty() && facts.holders.isEmpty())
        findings.push_back({true,
                            facts.holdersComplete
                                ? u"No program uses it."_s
                                : u"No program is seen to use it; other users' can't be seen."_s,
                            {}});
}

void findServices(const DeviceFacts& facts, std::vector<PortFinding>& findings)
{
    for (const ServiceFacts& service : facts.services) {
        if (!service.processes || service.processes->isEmpty())
            continue;
        const bool leaves = service.toldToLeaveAlone.value_or(false);
        const bool holds = service.holdsDevice.value_or(false);
        const QString finding = holds    ? u"%1 runs and holds the device."_s
                                : leaves ? u"%1 runs and is told to leave the device alone."_s
                                         : u"%1 runs and is not known to leave the device alone."_s;
        findings.push_back(
            {!holds && leaves, finding.arg(service.name),
             !holds && leaves ? QString() : u"Stop it, or tell it by a udev rule."_s});
    }
}

void findAdapter(const DeviceFacts& facts, std::vector<PortFinding>& findings)
{
    const auto latency = facts.hardware.latencyMilliseconds;
    if (!latency)
        return;
    const bool slow = *latency >= slowAdapter;
    findings.push_back(
        {!slow, u"The adapter collects bytes for %1 ms."_s.arg(*latency),
         slow ? u"A latency timer of 1 ms makes short exchanges faster."_s : QString()});
}

} // namespace

std::vector<PortFinding> findingsOf(const DeviceFacts& facts)
{
    std::vector<PortFinding> findings{deviceFinding(facts)};
    if (facts.state == PortState::NoDevice)
        return findings;
    findings.push_back(permissionFinding(facts));
    findUsers(facts, findings);
    findServices(facts, findings);
    findAdapter(facts, findings);
    return findings;
}

std::optional<PortFinding> faultOf(const DeviceFacts& facts)
{
    const auto findings = findingsOf(facts);
    const auto wrong = std::ranges::find(findings, false, &PortFinding::ok);
    return facts.state == PortState::Free || wrong == findings.end() ? std::nullopt
                                                                     : std::optional(*wrong);
}

std::optional<PortObstacle> portObstacle(const DeviceFacts& facts)
{
    static constexpr std::array names{u"", u"in use", u"no rights", u"no adapter"};
    const auto user = facts.user();
    if (facts.state == PortState::Free || (user && user->pid == ::getpid()))
        return std::nullopt;
    QString what = QString::fromUtf16(names.at(static_cast<std::size_t>(facts.state)));
    if (facts.state == PortState::InUse && user)
        what += u" by "_s + userText(*user);
    const auto fault = faultOf(facts);
    return PortObstacle{what, fault ? fault->hint : QString()};
}

} // namespace fldc
