#include "automation/ManagerObject.h"

#include "automation/BusNames.h"
#include "manager/Operation.h"
#include "platform/IMessageBox.h"
#include "platform/IProgramInfo.h"

#include <QDBusMessage>

#include <utility>

namespace fldc {

std::shared_ptr<IDownloadWindow> ManagerObject::Windows::createWindow()
{
    auto window = m_factory.createWindow();
    m_latest = window;
    return window;
}

bool ManagerObject::Windows::latestVisible() const
{
    const auto window = m_latest.lock();
    return window && window->isVisible() && m_program.screenPresent();
}

ManagerObject::ManagerObject(const Platform& platform, IDownloadWindowFactory& windows,
                             IWaitDialogFactory& dialogs, const QDBusConnection& connection,
                             const QString& path)
    : m_messages(platform.messages), m_windows(windows, platform.program),
      m_manager(platform, m_windows, dialogs)
{
    sendEvents(connection, path);
}

void ManagerObject::sendEvents(const QDBusConnection& connection, const QString& path)
{
    const auto send = [connection, path](const char* event, const QVariantList& arguments) {
        QDBusMessage signal = QDBusMessage::createSignal(
            path, interfaceName(QLatin1StringView("__clsDLManager")), QString::fromLatin1(event));
        signal.setArguments(arguments);
        connection.send(signal);
    };
    QObject::connect(
        &m_manager, &clsDLManager::DownloadProgressUpdate, &m_manager,
        [send](int lngPercentage, const QString& strCurrentfileName, int lngIndex) {
            send("DownloadProgressUpdate", {lngPercentage, strCurrentfileName, lngIndex});
        });
    QObject::connect(&m_manager, &clsDLManager::ReportConfigurationsUpdate, &m_manager,
                     [send](const QString& strReportConfigurations) {
                         send("ReportConfigurationsUpdate", {strReportConfigurations});
                     });
    QObject::connect(&m_manager, &clsDLManager::PowerCycleRequired, &m_manager,
                     [send] { send("PowerCycleRequired", {}); });
}

ManagerObject::ExclusiveCall::ExclusiveCall(ManagerObject& object, const QString& client)
    : m_object(object)
{
    if (operationRuns())
        throw BusError{busyError, QStringLiteral("another operation runs")};
    m_clientBefore = std::exchange(m_object.m_callingClient, client);
}

ManagerObject::ExclusiveCall::~ExclusiveCall()
{
    m_object.m_callingClient = m_clientBefore;
}

bool ManagerObject::startTask(enmAsyncTaskID task, const QString& input, const QString& client)
{
    if (!m_callingClient.isEmpty() || !m_manager.AsyncTaskProcess(task, input))
        return false;
    m_taskClient = client;
    return true;
}

void ManagerObject::endWorkOf(const QString& client)
{
    const bool itsTask = m_manager.AsyncTaskBusy() && m_taskClient == client;
    if (itsTask || m_callingClient == client)
        endWork();
}

void ManagerObject::abandon()
{
    QObject::disconnect(&m_manager, nullptr, nullptr, nullptr);
    if (!windowVisible() || m_manager.AsyncTaskBusy() || !m_callingClient.isEmpty())
        endWork();
}

void ManagerObject::endWork()
{
    m_manager.withdrawTask();
    m_manager.cancelOperation();
    // Calls that are no operation show boxes, too: a log that can't be written.
    if (!m_callingClient.isEmpty() && !operationRuns())
        m_messages.dismiss();
}

} // namespace fldc
