#include "platform/qt/QtEvents.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>

namespace fldc {

void QtEvents::processPending()
{
    QCoreApplication::processEvents(QEventLoop::AllEvents);
}

void QtEvents::waitForEvents()
{
    QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
}

void QtEvents::pause(std::chrono::milliseconds duration)
{
    if (duration <= std::chrono::milliseconds::zero()) {
        processPending();
        return;
    }
    QTimer timer;
    timer.setSingleShot(true);
    timer.setTimerType(Qt::PreciseTimer);
    timer.start(duration);
    while (timer.isActive())
        waitForEvents();
}

} // namespace fldc
