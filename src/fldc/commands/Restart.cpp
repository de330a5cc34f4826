#include "certificate/Verdict.h"
#include "fldc/commands/CommandTable.h"
#include "fldc/files/NamedPort.h"
#include "fldc/radio/RadioRun.h"

namespace fldc::cli {

Outcome runRestart(Context& context)
{
    RadioRun run(context, context.port.device);
    if (auto ended = run.openLog())
        return *ended;
    (void)run.manager().RestartFromAnyState();
    return verdictOfRestart(run.record());
}

} // namespace fldc::cli
