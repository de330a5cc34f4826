#pragma once

#include "platform/ITimers.h"

#include <chrono>

namespace fldc {

/// The one-shot reply timer of a port: at most one runs, and it fires at most once.
///
/// The platform's timers repeat until they are stopped, so this one stops itself when it fires.
/// Starting it anew forgets that it has expired; a reading loop does that for each period.
class modTimer {
public:
    explicit modTimer(ITimers& timers) : m_timers(timers) {}
    ~modTimer() { StopTimer(); }
    modTimer(const modTimer&) = delete;
    modTimer& operator=(const modTimer&) = delete;

    /// Replaces a running timer. False, with last error 41, when no timer can be had; else the last
    /// error is 0.
    [[nodiscard]] bool StartTimer(std::chrono::milliseconds period);
    void StopTimer();
    [[nodiscard]] bool blnTimerExpired() const { return m_expired; }

private:
    void TimerProc();

    ITimers& m_timers;
    int lngTimerID = 0; ///< 0 while no timer runs
    bool m_expired = false;
};

} // namespace fldc
