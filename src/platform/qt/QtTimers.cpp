#include "platform/qt/QtTimers.h"

#include "platform/qt/CallbackGuard.h"

#include <QTimerEvent>

#include <algorithm>

namespace fldc {

int QtTimers::start(std::chrono::milliseconds period, std::function<void()> callback)
{
    auto shared = std::make_shared<const std::function<void()>>(std::move(callback));
    m_timers.reserve(m_timers.size() + 1);
    const int id = startTimer(period, Qt::PreciseTimer);
    if (id != 0)
        m_timers.push_back({id, std::move(shared)});
    return id;
}

void QtTimers::stop(int id) noexcept
{
    const auto found = std::ranges::find(m_timers, id, &Timer::id);
    if (found == m_timers.end())
        return;
    killTimer(id);
    m_timers.erase(found);
}

void QtTimers::timerEvent(QTimerEvent* event)
{
    const auto found = std::ranges::find(m_timers, event->timerId(), &Timer::id);
    if (found == m_timers.end())
        return;
    const auto callback = found->callback;
    callGuarded(*callback);
}

} // namespace fldc
