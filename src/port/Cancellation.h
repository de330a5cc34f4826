#pragma once

namespace fldc {

/// Set to end the running operation at its next wait. The port fails every exchange with code 1
/// from then on, so that no further byte goes to the radio.
class Cancellation {
public:
    void request() { m_requested = true; }
    void reset() { m_requested = false; }
    [[nodiscard]] bool requested() const { return m_requested; }

private:
    bool m_requested = false;
};

} // namespace fldc
