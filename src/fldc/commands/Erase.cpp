#include "certificate/Verdict.h"
#include "fldc/certificate/CertificateKeeper.h"
#include "fldc/commands/CommandTable.h"
#include "fldc/files/FirmwareFile.h"
#include "fldc/files/NamedPort.h"
#include "fldc/options/Options.h"
#include "fldc/output/Output.h"
#include "fldc/radio/RadioRun.h"

#include <QFile>

#include <algorithm>

namespace fldc::cli {

using namespace Qt::StringLiterals;

namespace {

using Components = std::vector<session::Component>;

/// Positions in the report, from 0.
using Positions = std::vector<std::size_t>;

Positions positionsOf(const QString& name, const Components& components)
{
    Positions found;
    if (name.startsWith(u'#')) {
        bool isNumber = false;
        const int number = QStringView(name).sliced(1).toInt(&isNumber);
        if (isNumber && number >= 1 && static_cast<std::size_t>(number) <= components.size())
            found.push_back(static_cast<std::size_t>(number - 1));
        return found;
    }
    for (std::size_t i = 0; i < components.size(); ++i) {
        if (components[i].product == name)
            found.push_back(i);
    }
    return found;
}

Outcome nothingToErase(const QString& message)
{
    return failure(Exit::NothingToDo, Code::Success, message,
                   u"Nothing was erased; look at the report and name what it shows."_s);
}

/// Each name must mean one component, and one that may be erased.
std::optional<Outcome> choose(const Options& options, const Components& components,
                              Positions& chosen)
{
    for (const std::string& each : options.components) {
        const QString name = QString::fromStdString(each);
        const Positions found = positionsOf(name, components);
        if (found.empty())
            return nothingToErase(u"The radio has no component %1."_s.arg(name));
        if (found.size() > 1)
            return nothingToErase(
                u"%1 components are named %2; name one by its number (#%3)."_s.arg(found.size())
                    .arg(name)
                    .arg(found.front() + 1));
        if (!components[found.front()].erasable)
            return nothingToErase(u"%1 can't be erased."_s.arg(name));
        if (std::ranges::find(chosen, found.front()) == chosen.end())
            chosen.push_back(found.front());
    }
    return std::nullopt;
}

QString eraseList(const Positions& chosen)
{
    QString list;
    for (const std::size_t position : chosen)
        list += QString::number(position + 1) + u'|';
    return list;
}

} // namespace

// The radio stays in upgrade mode between reading and erasing, so that one that must be switched
// off and on is so once.
Outcome runErase(Context& context)
{
    if (auto ended = keepCertificate(context, {}))
        return *ended;
    RadioRun run(context, context.port.device);
    if (auto ended = run.openLog())
        return *ended;
    clsDLManager& manager = run.manager();
    manager.setStayConnected(true);
    QString unused;
    (void)manager.ReportConfigurations(unused);
    const auto& reported = run.record().components(session::Reading::Report);
    manager.setStayConnected(false);
    if (run.record().ending().code != Code::Success || !reported)
        return verdictOfReport(run.record());

    const Components components = *reported;
    Positions chosen;
    if (auto nothing = choose(context.options, components, chosen)) {
        (void)manager.EraseSelected({}, unused); // restarts the radio
        nothing->radio = textOf(run.record().state()).name.toString();
        return *nothing;
    }
    (void)manager.EraseSelected(eraseList(chosen), unused);
    return verdictOfErasure(run.record());
}

} // namespace fldc::cli
