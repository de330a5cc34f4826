#pragma once

#include "automation/SessionInterface.h"
#include "manager/IDownloadWindow.h"
#include "manager/clsDLManager.h"

#include <QDBusConnection>
#include <QString>

#include <functional>
#include <memory>
#include <vector>

namespace fldc {

/// Makes a listener that a manager is given for its life, or none.
using ListenerFactory = std::function<std::unique_ptr<session::IListener>(clsDLManager&)>;

/// A download manager on the bus: sends its events from its own path and remembers which client
/// asked for what, so that an operation ends when nobody waits for it any more.
class ManagerObject {
public:
    /// @p listeners: who else hears of the manager's operations. @p busyText: why a call is refused
    /// while an operation runs.
    ManagerObject(const Platform& platform, IDownloadWindowFactory& windows,
                  IWaitDialogFactory& dialogs, const ListenerFactory& listeners,
                  const QDBusConnection& connection, const QString& path,
                  std::function<QString()> busyText);

    [[nodiscard]] clsDLManager& manager() { return m_manager; }
    [[nodiscard]] const clsDLManager& manager() const { return m_manager; }
    [[nodiscard]] const SessionInterface& session() const { return *m_session; }
    /// Unique name of the client whose operation runs; empty when none does, or one that a user
    /// started in the window.
    [[nodiscard]] QString holder() const;
    /// Sends PropertiesChanged for what has changed of the published properties.
    void tellChanges();
    /// A window on the screen keeps its manager, whether or not a client still holds it.
    [[nodiscard]] bool windowVisible() const { return m_windows.latestVisible(); }

    /// For the life of a call that runs an operation or changes what one depends on. Throws
    /// BusError (busyError) while an operation runs on the thread.
    class ExclusiveCall {
    public:
        ExclusiveCall(ManagerObject& object, const QString& client);
        ~ExclusiveCall();
        ExclusiveCall(const ExclusiveCall&) = delete;
        ExclusiveCall& operator=(const ExclusiveCall&) = delete;

    private:
        ManagerObject& m_object;
        QString m_clientBefore;
    };

    /// clsDLManager::AsyncTaskProcess, refused also while a call runs an operation of this manager:
    /// the end of that operation would end the task with it.
    bool startTask(enmAsyncTaskID task, const QString& input, const QString& client);

    /// @p client has gone: what it asked for ends at its next wait, or does not start at all.
    void endWorkOf(const QString& client);
    /// Nobody holds the manager any more: no further event, and its operation ends; one that the
    /// user started in a visible window goes on.
    void abandon();
    /// Ends the running operation with its message boxes, and takes back a pending task.
    void endWork();

private:
    // Remembers the window that the manager has at present.
    class Windows final : public IDownloadWindowFactory {
    public:
        Windows(IDownloadWindowFactory& factory, IProgramInfo& program)
            : m_factory(factory), m_program(program)
        {
        }
        [[nodiscard]] std::shared_ptr<IDownloadWindow> createWindow() override;
        [[nodiscard]] bool latestVisible() const;

    private:
        IDownloadWindowFactory& m_factory;
        IProgramInfo& m_program;
        std::weak_ptr<IDownloadWindow> m_latest;
    };

    using Send =
        std::function<void(const QString& interface, const char* member, const QVariantList&)>;

    void sendEvents();
    [[nodiscard]] QVariantMap watchedProperties() const;

    IMessageBox& m_messages;
    Windows m_windows;
    std::unique_ptr<session::IListener> m_listener; ///< may be null; outlives the manager
    clsDLManager m_manager;
    std::function<QString()> m_busyText;
    Send m_send;
    QVariantMap m_told; ///< the properties' values that clients know
    std::unique_ptr<SessionInterface> m_session;
    QString m_callingClient; ///< of the exclusive call that runs; empty when none does
    QString m_taskClient;    ///< of the task accepted last
};

} // namespace fldc
