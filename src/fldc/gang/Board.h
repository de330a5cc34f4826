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
    int unheard = 0; ///< left when standard output went away
};

/// The lines of the board: one per port, and the totals. Where @p rows don't do for that, ports are
/// left out, those first that have passed, then failed ones, then those that wait, and the last
/// line names them.
[[nodiscard]] std::vector<BoardLine> boardOf(const std::vector<std::unique_ptr<Unit>>& units,
                                             const GangCounts& counts, std::size_t rows);

/// The line of a unit that has ended. @p next: what is to be done about it; may be empty.
[[nodiscard]] BoardLine resultLine(const Unit& unit, const QString& next = {});

} // namespace fldc::cli
