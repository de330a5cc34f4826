#include "certificate/Verdict.h"
#include "fldc/commands/CommandTable.h"
#include "fldc/files/NamedPort.h"
#include "fldc/output/Output.h"
#include "fldc/radio/RadioRun.h"
#include "ui/logic/ConfigurationList.h"

namespace fldc::cli {

using namespace Qt::StringLiterals;

namespace {

QString reportLines(const std::vector<session::Component>& components)
{
    QString text = u"      Code and version  Network  Device  Status\n"_s;
    int number = 0;
    for (const session::Component& each : components)
        text += u"%1  %2  %3  %4  %5\n"_s.arg(u'#' + QString::number(++number), 4)
                    .arg(each.product, -16)
                    .arg(each.network, 7)
                    .arg(each.device, 6)
                    .arg(session::StatusText(each.status));
    return text;
}

} // namespace

Outcome runReport(Context& context)
{
    RadioRun run(context, context.port.device);
    if (auto ended = run.openLog())
        return *ended;
    QString unused;
    (void)run.manager().ReportConfigurations(unused);
    if (const auto& components = run.record().components(session::Reading::Report))
        context.output.print(reportLines(*components));
    return verdictOfReport(run.record());
}

} // namespace fldc::cli
