#include "manager/clsDLManager.h"

#include "manager/Operation.h"
#include "platform/ITimers.h"

#include <utility>
#include <vector>

namespace fldc {

using namespace std::chrono_literals;

namespace {

// Managers of the thread with a task that has not started, in the order of acceptance.
thread_local std::vector<const clsDLManager*> waiting;

// From the acceptance of a task to its start: long enough for the call to have returned.
constexpr auto taskDelay = 20ms;

} // namespace

bool clsDLManager::AsyncTaskProcess(enmAsyncTaskID eAsyncTaskID, const QString& strInput)
{
    const bool known = eAsyncTaskID == eDownload || eAsyncTaskID == eLoadFiles ||
                       eAsyncTaskID == eReportConfigurations;
    if (m_asyncBusy || !known)
        return false;
    m_AsyncTaskTimer = m_platform.timers.start(taskDelay, [this] { RunAsyncTask(); });
    if (m_AsyncTaskTimer == 0)
        return false;
    m_asyncTask = eAsyncTaskID;
    m_asyncInput = strInput;
    m_asyncBusy = true;
    waiting.push_back(this);
    Q_EMIT AsyncTaskBusyChanged();
    return true;
}

void clsDLManager::RunAsyncTask()
{
    // Another manager's operation has the thread, or its task is next: the timer ticks again.
    if (operationRuns() || waiting.front() != this)
        return;
    stopTaskTimer();
    switch (m_asyncTask) {
    case eDownload:
        DownLoad(m_asyncInput);
        break;
    case eLoadFiles:
        LoadFiles(m_asyncInput);
        break;
    case eReportConfigurations:
        ReportConfigurations(m_asyncInput);
        break;
    case eNone:
        break;
    }
}

// The operations themselves end the task at their very end, also when none started them; a task
// that was accepted meanwhile and has not started goes on waiting. The text is a copy: a handler
// may start the next task, which replaces the input it came from.
void clsDLManager::EndAsyncTask(enmAsyncTaskID task, QString text)
{
    if (m_AsyncTaskTimer == 0)
        noTask();
    if (task == eDownload || task == eReportConfigurations)
        Q_EMIT ReportConfigurationsUpdate(text);
}

void clsDLManager::withdrawTask()
{
    if (m_AsyncTaskTimer == 0)
        return;
    stopTaskTimer();
    noTask();
}

void clsDLManager::noTask()
{
    m_asyncTask = eNone;
    if (std::exchange(m_asyncBusy, false))
        Q_EMIT AsyncTaskBusyChanged();
}

void clsDLManager::stopTaskTimer()
{
    std::erase(waiting, this);
    m_platform.timers.stop(m_AsyncTaskTimer);
    m_AsyncTaskTimer = 0;
}

} // namespace fldc
