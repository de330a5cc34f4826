#include "platform/qt/QtTimers.h"

#include "platform/qt/CallbackGuard.h"

#include <QTimerEvent>

#include <algorithm>
#include <limits>

namespace fldc {

int QtTimers::start(std::chrono::milliseconds period, std::function<void()> callback)
{
    auto shared = std::make_shared<const std::function<void()>>(std::move(callback));
    m_timers.reserve(m_timers.size() + 1);
    const int qtId = startTimer(period, Qt::PreciseTimer);
    if (qtId == 0)
        return 0;
    // Qt gives the identifier of a stopped timer to the next one at once; an identifier of our own
    // keeps a late stop() from hitting somebody else's timer.
    m_lastId = m_lastId == std::numeric_limits<int>::max() ? 1 : m_lastId + 1;
    m_timers.push_back({m_lastId, qtId, std::move(shared)});
    return m_lastId;
}

void QtTimers::stop(int id) noexcept
{
    const auto found = std::ranges::find(m_timers, id, &Timer::id);
    if (found == m_timers.end())
        return;
    killTimer(found->qtId);
    m_timers.erase(found);
}

void QtTimers::timerEvent(QTimerEvent* event)
{
    const auto found = std::ranges::find(m_timers, event->timerId(), &Timer::qtId);
    if (found == m_timers.end())
        return;
    const auto callback = found->callback;
    callGuarded(*callback);
}

} // namespace fldc
