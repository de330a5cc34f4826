#pragma once

#include "certificate/Outcome.h"
#include "certificate/RunFacts.h"
#include "firmware/clsFile.h"

#include <QString>

#include <memory>
#include <vector>

namespace fldc {

/// Of a run that was to change nothing in flash (report).
[[nodiscard]] Outcome verdictOfReport(const RunFacts& record);

/// Of a restart.
[[nodiscard]] Outcome verdictOfRestart(const RunFacts& record);

/// Of a test of the line.
[[nodiscard]] Outcome verdictOfLinkTest(const RunFacts& record);

/// Of a download of @p images, in their order.
[[nodiscard]] Outcome verdictOfDownload(const RunFacts& record,
                                        const std::vector<std::shared_ptr<clsFile>>& images);

/// Of an erasure.
[[nodiscard]] Outcome verdictOfErasure(const RunFacts& record);

} // namespace fldc
