#pragma once

#include <chrono>
#include <functional>

namespace fldc {

/// Timers of the thread; their callbacks run inside the calls of IEvents.
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
