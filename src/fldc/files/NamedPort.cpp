#include "fldc/files/NamedPort.h"

#include "fldc/options/Options.h"
#include "platform/RemoteAddress.h"
#include "platform/linux/DeviceFacts.h"
#include "platform/linux/PortFindings.h"
#include "platform/qt/SettingsFile.h"
#include "platform/qt/serial/PortListing.h"
#include "platform/qt/serial/PortText.h"

#include <QFile>

namespace fldc::cli {

using namespace Qt::StringLiterals;

std::optional<Outcome> namePort(const Options& options, bool needed, NamedPort& port)
{
    if (!options.port && !needed)
        return std::nullopt;
    QString text =
        options.port ? QFile::decodeName(QByteArray::fromStdString(*options.port)) : u"-"_s;
    if (text == u"-")
        text = qEnvironmentVariable("FLDC_PORT");
    if (text.isEmpty())
        return usageError(u"No port was named."_s,
                          u"Name one, or set the variable FLDC_PORT; fldc ports lists them."_s);
    const SettingsFile settings(SettingsFile::defaultPath());
    const ChosenPort chosen = choosePort(text, PortListing(settings));
    port = {chosen.name, chosen.device};
    if (chosen.device.isEmpty())
        return failure(Exit::Port, Code::PortDoesNotExist, chosen.error, chosen.hint);
    return std::nullopt;
}

Outcome explainPort(Outcome outcome, const NamedPort& port)
{
    if (outcome.exit != Exit::Port || outcome.code == Code::Success || port.device.isEmpty())
        return outcome;
    if (isRemote(port.device)) {
        outcome.message = port.device + u": "_s + outcome.message;
        outcome.advice = u"Look whether that machine can be reached and offers the line."_s;
        return outcome;
    }
    DeviceInspector inspector(LinuxSystem::thisMachine());
    const auto fault = faultOf(inspector.facts(port.device));
    if (!fault) {
        outcome.advice = u"fldc doctor %1 tells more of the port."_s.arg(port.name);
        return outcome;
    }
    outcome.message = port.device + u": "_s + fault->text;
    outcome.advice = fault->hint;
    return outcome;
}

} // namespace fldc::cli
