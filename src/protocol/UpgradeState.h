#pragma once

#include <QString>

#include <cstdint>

namespace fldc {

/// What a protocol object remembers of its radio's upgrade mode.
struct UpgradeState {
    /// 0: normal log-on. 10: special log-on after a power cycle.
    std::int32_t lngUpgradeMode = 0;
    /// The radio must be power-cycled with its F1 key held.
    bool blnF1KeyRequired = false;

    [[nodiscard]] bool special() const { return lngUpgradeMode == 10; }
};

/// What a user is asked to do when the radio must be power-cycled.
[[nodiscard]] inline QString powerCycleRequest(bool blnF1KeyRequired)
{
    return blnF1KeyRequired
               ? QStringLiteral("Please hold the F1 Key and Power Cycle the Radio to continue ...")
               : QStringLiteral("Please Power Cycle the Radio to continue ...");
}

} // namespace fldc
