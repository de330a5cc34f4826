#pragma once

#include "fldc/gang/Unit.h"
#include "fldc/output/Terminal.h"

#include <memory>
#include <vector>

namespace fldc::cli {

/// Counts of a gang's downloads that have ended.
struct GangCounts {
    int passed = 0;
    int failed = 0;
};

/// The lines of the board: one per port, and the totals.
[[nodiscard]] std::vector<BoardLine> boardOf(const std::vector<std::unique_ptr<Unit>>& units,
                                             const GangCounts& counts);

/// The line of a unit that has ended.
[[nodiscard]] BoardLine resultLine(const Unit& unit);

} // namespace fldc::cli
