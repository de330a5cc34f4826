#pragma once

namespace fldc {

/// Set to end the running operation at its next wait. The port fails every exchange with code 1
/// from then on, so that no further byte goes to the radio, until the next operation begins.
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
