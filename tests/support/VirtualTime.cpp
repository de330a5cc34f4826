#include "support/VirtualTime.h"

#include "platform/PlatformFailure.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace fldc {

namespace {

// No operation of the component takes so long.
constexpr std::chrono::milliseconds longestTest = std::chrono::hours(2);

} // namespace

void VirtualTime::after(milliseconds delay, std::function<void()> action)
{
    m_actions.emplace(m_now + delay, std::move(action));
}

// Runs the next thing due up to @p limit, at its time; false when there is none.
bool VirtualTime::runNextBefore(milliseconds limit)
{
    const auto timer =
        std::ranges::min_element(m_timers, {}, [](const auto& each) { return each.second.due; });
    const bool haveTimer = timer != m_timers.end();
    const bool haveAction = !m_actions.empty();
    const bool actionFirst =
        haveAction && (!haveTimer || m_actions.begin()->first <= timer->second.due);
    if (!haveTimer && !haveAction)
        return false;
    const milliseconds due = actionFirst ? m_actions.begin()->first : timer->second.due;
    if (due > limit)
        return false;
    m_now = std::max(m_now, due);
    std::function<void()> run;
    if (actionFirst) {
        run = std::move(m_actions.begin()->second);
        m_actions.erase(m_actions.begin());
    } else {
        timer->second.due += timer->second.period;
        run = timer->second.callback;
    }
    run();
    return true;
}

void VirtualTime::processPending()
{
    while (runNextBefore(m_now)) {
    }
}

void VirtualTime::waitForEvents()
{
    if (runNextBefore(longestTest))
        return;
    ADD_FAILURE() << "a wait without an end";
    throw PlatformFailure(FailureNumber::Internal, QStringLiteral("a wait without an end"));
}

void VirtualTime::pause(milliseconds duration)
{
    const milliseconds end = m_now + duration;
    while (runNextBefore(end)) {
    }
    m_now = end;
}

int VirtualTime::start(milliseconds period, std::function<void()> callback)
{
    if (m_refuseTimers)
        return 0;
    m_timers.emplace(++m_lastTimer, Timer{m_now + period, period, std::move(callback)});
    return m_lastTimer;
}

} // namespace fldc
