#include "port/modTimer.h"

#include "platform/ShowError.h"
#include "shared/LastError.h"

namespace fldc {

bool modTimer::StartTimer(std::chrono::milliseconds period)
{
    StopTimer();
    m_expired = false;
    try {
        lngTimerID = m_timers.start(period, [this] { TimerProc(); });
    } catch (...) {
        ShowError(currentFailure());
    }
    lastError().set(lngTimerID == 0 ? Code::TimerNotCreated : Code::Success);
    return lngTimerID != 0;
}

void modTimer::StopTimer()
{
    m_timers.stop(lngTimerID);
    lngTimerID = 0;
}

void modTimer::TimerProc()
{
    StopTimer();
    m_expired = true;
}

} // namespace fldc
