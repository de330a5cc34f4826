#pragma once

namespace fldc::cli {

/// What a standard output that can't be written any more means for a run: before the first erase
/// the run ends as a cancel, from then on it completes, to the restart. A reader that goes away
/// never leaves flash half written. Either way the process exits with 141.
///
/// Told by the output (lost) and by whoever follows the radio (eraseBegins); asked behind each
/// event and before each step that may erase.
class OutputLoss {
public:
    /// Standard output can't be written. Later calls change nothing.
    void lost()
    {
        m_wantsCancel = m_wantsCancel || (!m_lost && !m_eraseBegun);
        m_lost = true;
    }
    /// An erase is about to be sent, so that flash may be erased from now on.
    void eraseBegins() { m_eraseBegun = true; }

    [[nodiscard]] bool isLost() const { return m_lost; }
    /// True from the loss on when nothing had been erased by then; never taken back, since the
    /// cancel is under way.
    [[nodiscard]] bool wantsCancel() const { return m_wantsCancel; }

private:
    bool m_lost = false;
    bool m_eraseBegun = false;
    bool m_wantsCancel = false;
};

} // namespace fldc::cli
