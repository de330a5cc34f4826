#include "fldc/commands/CommandTable.h"
#include "fldc/output/Output.h"
#include "platform/RemoteAddress.h"
#include "platform/linux/DeviceFacts.h"
#include "platform/qt/SettingsFile.h"
#include "platform/qt/serial/PortListing.h"
#include "shared/NumberText.h"

#include <array>

namespace fldc::cli {

using namespace Qt::StringLiterals;

namespace {

/// Of ports that are there; the others are no ports to choose from.
constexpr std::array<QStringView, 3> stateNames{u"free", u"in use", u"no permission"};

QJsonValue textOrNull(const QString& text)
{
    return text.isEmpty() ? QJsonValue() : QJsonValue(validText(text));
}

void tellRemote(Output& output, const QString& name, const QString& device)
{
    const QString description = u"line of another machine"_s;
    const QString state = u"unknown"_s; // nobody is asked
    output.tell(kind::port, makeObject(kind::port, {{"name"_L1, name},
                                                    {"device"_L1, validText(device)},
                                                    {"stable"_L1, validText(device)},
                                                    {"description"_L1, description},
                                                    {"vendor"_L1, QJsonValue()},
                                                    {"product"_L1, QJsonValue()},
                                                    {"serial"_L1, QJsonValue()},
                                                    {"state"_L1, state},
                                                    {"pid"_L1, QJsonValue()},
                                                    {"program"_L1, QJsonValue()}}));
    output.print(
        u"%1 %2 %3  %4\n"_s.arg(name, -7).arg(device, -20).arg(description, -24).arg(state));
}

QJsonObject portObject(const QString& name, const DeviceFacts& facts)
{
    const auto user = facts.user();
    const bool isSeen = user && user->pid != 0;
    return makeObject(
        kind::port, {{"name"_L1, name},
                     {"device"_L1, validText(facts.device)},
                     {"stable"_L1, textOrNull(facts.stableNames.value(0))},
                     {"description"_L1, textOrNull(facts.hardware.description)},
                     {"vendor"_L1, textOrNull(facts.hardware.vendor)},
                     {"product"_L1, textOrNull(facts.hardware.product)},
                     {"serial"_L1, textOrNull(facts.hardware.serial)},
                     {"state"_L1, stateNames.at(static_cast<std::size_t>(facts.state)).toString()},
                     {"pid"_L1, isSeen ? QJsonValue(static_cast<qint64>(user->pid)) : QJsonValue()},
                     {"program"_L1, isSeen ? textOrNull(user->program) : QJsonValue()}});
}

QString portLine(const QString& name, const DeviceFacts& facts)
{
    QString state = stateNames.at(static_cast<std::size_t>(facts.state)).toString();
    if (const auto user = facts.user(); user && facts.state == PortState::InUse)
        state += user->pid == 0 ? u" by a process that can't be seen"_s
                                : u" by %1 (%2)"_s.arg(user->program).arg(user->pid);
    return u"%1 %2 %3  %4\n"_s.arg(name, -7)
        .arg(facts.device, -20)
        .arg(facts.hardware.description, -24)
        .arg(state);
}

} // namespace

Outcome runPorts(Context& context)
{
    const SettingsFile settings(SettingsFile::defaultPath());
    const PortMap devices = PortListing(settings).devices();
    DeviceInspector inspector(LinuxSystem::thisMachine());
    qsizetype found = 0;
    for (auto each = devices.constBegin(); each != devices.constEnd(); ++each) {
        const QString name = u"COM%1"_s.arg(each.key());
        if (isRemote(each.value())) {
            ++found;
            tellRemote(context.output, name, each.value());
            continue;
        }
        const DeviceFacts facts = inspector.facts(each.value());
        if (facts.state == PortState::NoDevice) {
            context.output.terminal().note(
                u"%1 is set to %2, which is not there."_s.arg(name, validText(facts.device)));
            continue;
        }
        ++found;
        context.output.tell(kind::port, portObject(name, facts));
        context.output.print(portLine(name, facts));
    }
    return done(found == 0 ? u"This machine has no serial ports."_s
                           : counted(found, u"port") + u'.');
}

} // namespace fldc::cli
