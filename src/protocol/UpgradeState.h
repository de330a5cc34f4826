#pragma once

#include <cstdint>

namespace fldc {

/// What the protocol remembers of the radio's upgrade mode; one set per thread.
struct UpgradeState {
    /// 0: normal log-on. 10: special log-on after a power cycle.
    std::int32_t lngUpgradeMode = 0;
    /// The radio must be power-cycled with its F1 key held.
    bool blnF1KeyRequired = false;

    [[nodiscard]] bool special() const { return lngUpgradeMode == 10; }
};

[[nodiscard]] inline UpgradeState& upgradeState()
{
    thread_local UpgradeState state;
    return state;
}

} // namespace fldc
