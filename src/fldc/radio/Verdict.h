#pragma once

#include "firmware/clsFile.h"
#include "fldc/Outcome.h"
#include "fldc/radio/RunRecord.h"

#include <QString>

#include <memory>
#include <vector>

namespace fldc::cli {

/// Of a run that was to change nothing in flash (report).
[[nodiscard]] Outcome verdictOfReport(const RunRecord& record);

/// Of a restart.
[[nodiscard]] Outcome verdictOfRestart(const RunRecord& record);

/// Of a test of the line.
[[nodiscard]] Outcome verdictOfLinkTest(const RunRecord& record);

/// Of a download of @p images, in their order.
[[nodiscard]] Outcome verdictOfDownload(const RunRecord& record,
                                        const std::vector<std::shared_ptr<clsFile>>& images);

/// Of an erasure of the components @p asked, as they were reported before.
[[nodiscard]] Outcome verdictOfErasure(const RunRecord& record,
                                       const std::vector<session::Component>& asked);

} // namespace fldc::cli
