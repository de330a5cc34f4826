#pragma once

#include "fldc/Outcome.h"

#include <optional>

namespace fldc::cli {

struct Context;
struct LoadedFirmware;

/// For a download with --certificate: makes and tries the folder, listens to what is told from now
/// on, and writes the certificate when the result is known, however the download ends (but not for
/// the exit codes 1 and 3, which no radio has seen). Called before the line is opened. Returns the
/// outcome (exit code 3) when the folder can't be written to; without --certificate does nothing.
[[nodiscard]] std::optional<Outcome> keepCertificate(Context& context,
                                                     const LoadedFirmware& firmware);

} // namespace fldc::cli
