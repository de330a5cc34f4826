#pragma once

#include "platform/IClock.h"
#include "platform/IEvents.h"
#include "platform/ITimers.h"

#include <chrono>
#include <functional>
#include <map>

namespace fldc {

/// Events, timers and clock without real time: a wait jumps to the next thing due and runs it. A
/// wait that would never end (nothing is due, or only things beyond two hours) fails the test, and
/// so does a loop that asks for events over and over without ever waiting, and who stops a timer
/// that is not his any more.
class VirtualTime final : public IEvents, public ITimers, public IClock {
public:
    using milliseconds = std::chrono::milliseconds;

    /// Runs @p action once, @p delay from now.
    void after(milliseconds delay, std::function<void()> action);
    [[nodiscard]] int timersRunning() const { return static_cast<int>(m_timers.size()); }
    /// From now on no timer can be had.
    void refuseTimers() { m_refuseTimers = true; }
    void setStart(const QDateTime& start) { m_start = start; }

    void processPending() override;
    void waitForEvents() override;
    void pause(milliseconds duration) override;
    [[nodiscard]] int start(milliseconds period, std::function<void()> callback) override;
    void stop(int id) noexcept override;
    [[nodiscard]] QDateTime now() const override { return m_start.addMSecs(m_now.count()); }
    [[nodiscard]] std::chrono::microseconds monotonic() const override { return m_now; }

private:
    struct Timer {
        milliseconds due;
        milliseconds period;
        std::function<void()> callback;
    };

    [[nodiscard]] bool runNextBefore(milliseconds limit);
    [[noreturn]] static void giveUp(const char* why);

    milliseconds m_now{0};
    QDateTime m_start{QDate(2026, 11, 22), QTime(21, 5, 33)};
    std::multimap<milliseconds, std::function<void()>> m_actions;
    std::map<int, Timer> m_timers;
    int m_lastTimer = 0;
    bool m_refuseTimers = false;
    int m_passesWithoutEvent = 0;
};

} // namespace fldc
