#pragma once

#include "certificate/Outcome.h"

#include <optional>
#include <vector>

namespace fldc::cli {

struct Context;
struct FirmwareFile;

/// Listens to what is told from now on, and when the result is known, however the run ends (but not
/// for the exit codes 1 and 3, which no radio has seen), writes the certificate into the folder of
/// --certificate and into the history, where there are these. Called before the line is opened.
/// Returns the outcome when the folder can't be written to (exit code 3) or --store names none (1).
[[nodiscard]] std::optional<Outcome> keepCertificate(Context& context,
                                                     const std::vector<FirmwareFile>& files);

} // namespace fldc::cli
