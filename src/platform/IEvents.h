#pragma once

#include <chrono>

namespace fldc {

/// The thread's event loop, as the waits of the component see it. Every callback of a timer, a
/// window, the bus or the serial line runs inside one of these calls and nowhere else.
///
/// Whoever waits tests its own condition in a loop around waitForEvents(): what came may have been
/// for somebody else. A callback may wait in its turn. The inner wait then has to end before the
/// outer one goes on, however long the outer condition has held; that is why an operation that
/// arrives in the middle of another is refused and not run inside it (manager/Operation.h).
///
/// What ends a wait: a byte, the hang-up of the line, a timer, input of a user, a call on the bus,
/// a signal that asks the program to end. An implementation must not return from waitForEvents()
/// over and over while none of these comes.
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
