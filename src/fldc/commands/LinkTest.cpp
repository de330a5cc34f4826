#include "certificate/LinkView.h"
#include "certificate/Verdict.h"
#include "fldc/commands/CommandTable.h"
#include "fldc/files/NamedPort.h"
#include "fldc/options/Options.h"
#include "fldc/output/Output.h"
#include "fldc/radio/RadioRun.h"

namespace fldc::cli {

using namespace Qt::StringLiterals;

Outcome runLinkTest(Context& context)
{
    RadioRun run(context, context.port.device);
    if (auto ended = run.openLog())
        return *ended;
    context.output.print(
        u"Sent besides reset, log-on, boot application and restart: Set Baud Rate and Confirm "
        "Ready, nothing that changes flash.\n"_s);
    (void)run.manager().TestLink(context.options.rounds);
    context.output.print(linkLines(run.record().links()));
    return verdictOfLinkTest(run.record());
}

} // namespace fldc::cli
