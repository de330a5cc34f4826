#include "support/VirtualTime.h"

#include "platform/PlatformFailure.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace fldc {

namespace {

// No operation of the component takes so long.
constexpr std::chrono::milliseconds longestTest = std::chrono::hours(2);
// Far more than there are bytes to fetch between two events.
constexpr int mostIdlePasses = 1'000'000;

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
    m_passesWithoutEvent = 0;
    std::function<void()> run;
    if (actionFirst) {
        run = std::move(m_actions.begin()->second);
        m_actions.erase(m_actions.begin());
    } else {
        timer->second.due += std::max(timer->second.period, milliseconds(1));
        run = timer->second.callback;
    }
    run();
    return true;
}

void VirtualTime::processPending()
{
    while (runNextBefore(m_now)) {
    }
    if (++m_passesWithoutEvent > mostIdlePasses)
        giveUp("a loop that never waits");
}

void VirtualTime::waitForEvents()
{
    if (!runNextBefore(longestTest))
        giveUp("a wait without an end");
}

// The test has failed; the exception gets it out of the loop.
void VirtualTime::giveUp(const char* why)
{
    ADD_FAILURE() << why;
    throw PlatformFailure(FailureNumber::Internal, QString::fromLatin1(why));
}

void VirtualTime::pause(milliseconds duration)
{
    const milliseconds end = m_now + duration;
    while (runNextBefore(end)) {
    }
    m_now = std::max(m_now, end); // what ran meanwhile may have waited beyond it
}

void VirtualTime::stop(int id) noexcept
{
    EXPECT_TRUE(m_timers.erase(id) == 1 || id == 0) << "timer " << id << " is stopped twice";
}

int VirtualTime::start(milliseconds period, std::function<void()> callback)
{
    if (m_refuseTimers)
        return 0;
    m_timers.emplace(++m_lastTimer, Timer{m_now + period, period, std::move(callback)});
    return m_lastTimer;
}

} // namespace fldc
