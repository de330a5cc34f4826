#pragma once

#include <chrono>

namespace fldc {

/// The thread's event loop, as the waits of the component see it. Every callback of a timer, a
/// window, the bus or the serial line runs inside one of these calls and nowhere else.
class IEvents {
public:
    virtual ~IEvents() = default;

    /// Serves what is pending and returns at once.
    virtual void processPending() = 0;
    /// Serves what is pending; when nothing is, blocks until an event or a timer arrives and serves
    /// that. Costs no processor time while it blocks. May return without cause: call it in a loop
    /// that tests its own condition.
    virtual void waitForEvents() = 0;
    /// Returns after @p duration, serving events meanwhile.
    virtual void pause(std::chrono::milliseconds duration) = 0;
};

} // namespace fldc
