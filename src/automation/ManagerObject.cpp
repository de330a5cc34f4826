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
                             IWaitDialogFactory& dialogs, const ListenerFactory& listeners,
                             const QDBusConnection& connection, const QString& path,
                             std::function<QString()> busyText)
    : m_messages(platform.messages), m_windows(windows, platform.program),
      m_manager(platform, m_windows, dialogs), m_busyText(std::move(busyText)),
      m_send([connection, path](const QString& interface, const char* member,
                                const QVariantList& arguments) {
          QDBusMessage signal =
              QDBusMessage::createSignal(path, interface, QString::fromLatin1(member));
          signal.setArguments(arguments);
          connection.send(signal);
      }),
      m_told(watchedProperties())
{
    if (listeners)
        m_listener = listeners(m_manager);
    if (m_listener)
        m_manager.addListener(*m_listener);
    sendEvents();
    m_session = std::make_unique<SessionInterface>(
        m_manager, SessionInterface::Surroundings{m_send, [this] { return holder(); }});
}

void ManagerObject::sendEvents()
{
    const auto send = [this](const char* event, const QVariantList& arguments) {
        m_send(interfaceName(QLatin1StringView("__clsDLManager")), event, arguments);
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
    QObject::connect(&m_manager, &clsDLManager::AsyncTaskBusyChanged, &m_manager,
                     [this] { tellChanges(); });
}

QString ManagerObject::holder() const
{
    if (!m_manager.operates())
        return {};
    if (!m_callingClient.isEmpty())
        return m_callingClient;
    return m_manager.AsyncTaskRuns() ? m_taskClient : QString();
}

QVariantMap ManagerObject::watchedProperties() const
{
    return {{QStringLiteral("AsyncTaskBusy"), m_manager.AsyncTaskBusy()},
            {QStringLiteral("RadioType"), static_cast<int>(m_manager.RadioType())},
            {QStringLiteral("StayConnected"), m_manager.StayConnected()}};
}

void ManagerObject::tellChanges()
{
    QVariantMap changed = watchedProperties();
    const QVariantMap before = std::exchange(m_told, changed);
    changed.removeIf([&](const auto& each) { return before.value(each.key()) == each.value(); });
    if (m_session && !changed.isEmpty())
        m_send(propertiesInterface, "PropertiesChanged",
               {interfaceName(QLatin1StringView("_clsDLManager")), changed, QStringList()});
}

ManagerObject::ExclusiveCall::ExclusiveCall(ManagerObject& object, const QString& client)
    : m_object(object)
{
    if (operationRuns())
        throw BusError{busyError, m_object.m_busyText()};
    m_clientBefore = std::exchange(m_object.m_callingClient, client);
}

ManagerObject::ExclusiveCall::~ExclusiveCall()
{
    m_object.m_callingClient = m_clientBefore;
    m_object.tellChanges();
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
    m_session.reset();
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
