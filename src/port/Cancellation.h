#pragma once

namespace fldc {

/// Set to end the running operation at its next wait. The port fails every exchange with code 1
/// from then on, so that no further byte goes to the radio, until the next operation begins.
///
/// The manager owns it and is the only one who sets it: for a client that leaves or unloads the
/// window, the end of the desktop's session, a signal. The port only looks, before each write and
/// at each turn of a wait, so that whoever sets it need not know where the operation stands. It is
/// not an event: who sets it does so from a callback, and the return from that callback is what
/// lets the wait look again.
class Cancellation {
public:
    void request() { m_requested = true; }
    /// Later operations end as well.
    void requestForGood() { m_requested = m_forGood = true; }
    void reset() { m_requested = m_forGood; }
    [[nodiscard]] bool requested() const { return m_requested; }

private:
    bool m_requested = false;
    bool m_forGood = false;
};

} // namespace fldc
