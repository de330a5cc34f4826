#pragma once

#include "platform/IProgramInfo.h"

namespace fldc {

/// What the running process and its environment say: RV4100_FLDC_HOME names another program folder,
/// RV4100_FLDC_POWER_CYCLE_S another limit for a power cycle (whole seconds; 5 minutes else).
///
/// A program in a folder lib/rv4100-fldc is an installed one and can't write beside itself: its
/// logs go to the user's state folder ($XDG_STATE_HOME/rv4100-fldc, else
/// ~/.local/state/rv4100-fldc), and boot files are looked for in /var/lib/rv4100-fldc first. Any
/// other, and one whose folder RV4100_FLDC_HOME names, has everything in its folder.
class ProgramInfo final : public IProgramInfo {
public:
    [[nodiscard]] QString folder() const override;
    [[nodiscard]] QString logFolder() const override;
    [[nodiscard]] QStringList bootFolders() const override;
    [[nodiscard]] QString title() const override;
    [[nodiscard]] ProgramVersion version() const override;
    [[nodiscard]] std::uint64_t threadId() const override;
    /// Goes by the platform that Qt has got; false in a program without Qt's windows.
    [[nodiscard]] bool screenPresent() const override;
    [[nodiscard]] bool userAtTerminal() const override;
    [[nodiscard]] std::chrono::milliseconds powerCycleLimit() const override;
};

} // namespace fldc
