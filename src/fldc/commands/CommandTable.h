#pragma once

#include "fldc/commands/Command.h"

#include <span>
#include <string_view>

namespace fldc::cli {

[[nodiscard]] std::span<const Command> commands();
/// Null for a name that no command has.
[[nodiscard]] const Command* findCommand(std::string_view name);

// The commands. Each may throw what it does not expect: the program ends with exit code 10 then.

[[nodiscard]] Outcome runPorts(Context& context);
[[nodiscard]] Outcome runDoctor(Context& context);
[[nodiscard]] Outcome runReport(Context& context);
[[nodiscard]] Outcome runCheck(Context& context);
[[nodiscard]] Outcome runDownload(Context& context);
[[nodiscard]] Outcome runGang(Context& context);
[[nodiscard]] Outcome runErase(Context& context);
[[nodiscard]] Outcome runRestart(Context& context);
[[nodiscard]] Outcome runLinkTest(Context& context);
[[nodiscard]] Outcome runInspect(Context& context);
[[nodiscard]] Outcome runPlan(Context& context);
[[nodiscard]] Outcome runCertificate(Context& context);
[[nodiscard]] Outcome runHistory(Context& context);

} // namespace fldc::cli
