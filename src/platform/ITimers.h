#pragma once

#include <chrono>
#include <functional>

namespace fldc {

/// Timers of the thread; their callbacks run inside the calls of IEvents.
///
/// The one who starts a timer owns it: it runs until it is stopped, and its callback must not use
/// what has gone before that. Nothing is stopped behind an owner's back. Periods are at least what
/// was asked for, never shorter.
class ITimers {
public:
    virtual ~ITimers() = default;

    /// Starts a timer that calls @p callback every @p period until it is stopped.
    /// Returns its identifier, or 0 when no timer can be had.
    [[nodiscard]] virtual int start(std::chrono::milliseconds period,
                                    std::function<void()> callback) = 0;
    /// Stops the timer @p id; an unknown identifier (0 included) is ignored. May be called from the
    /// timer's own callback.
    virtual void stop(int id) noexcept = 0;
};

} // namespace fldc
