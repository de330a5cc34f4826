#pragma once

#include "automation/BoundClass.h"
#include "automation/ManagerObject.h"
#include "automation/ObjectTable.h"
#include "automation/ObjectTree.h"
#include "automation/TypeLibrary.h"
#include "automation/root/ClientMessages.h"
#include "platform/Platform.h"
#include "platform/ShowError.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QSet>
#include <QString>
#include <QTimer>

#include <memory>
#include <vector>

namespace fldc {

/// The automation start mode: offers the download manager and the supporting classes on the session
/// bus for as long as clients hold objects.
///
/// A client holds what it created and the objects that it was handed, until it releases them or
/// leaves the bus. Every client that calls the global object holds that, too. A manager that nobody
/// holds goes as soon as its operation has ended in order and its window is off the screen.
///
/// Calls are served one inside the other: a short one is answered while a download waits for its
/// radio, and the answer to the outer call comes when the inner ones are done. What must not happen
/// inside an operation is refused before it begins (ManagerObject::ExclusiveCall).
///
/// A manager is never destroyed inside its own call. One that loses its last client is
/// put aside, its operation is cancelled, and it goes when that has run its closing steps: the port
/// is closed and the logs have their ends.
class AutomationServer final : private IObjectSource {
public:
    /// @p listeners: asked for each manager that is made.
    /// Throws PlatformFailure (internal) when the program does not serve what it publishes.
    AutomationServer(const Platform& platform, IDownloadWindowFactory& windows,
                     IWaitDialogFactory& dialogs, ListenerFactory listeners = {});
    ~AutomationServer() override;
    AutomationServer(const AutomationServer&) = delete;
    AutomationServer& operator=(const AutomationServer&) = delete;

    /// Serves until no client holds anything. Needs a QCoreApplication, and runs its event loop.
    /// Returns the exit code: 0, or 1 when there is no session bus or the name is taken (said on
    /// the standard error output).
    [[nodiscard]] int run();

    /// Ends every operation as a user's cancel does, and then run().
    void interrupt();

private:
    // IObjectSource
    [[nodiscard]] QString pathOf(const AnyObject& object, const QString& client) override;
    [[nodiscard]] std::shared_ptr<void> objectAt(const QString& path,
                                                 std::type_index type) override;
    [[nodiscard]] PublishedObject objectFor(const QString& path, const QString& client) override;
    [[nodiscard]] const BoundClass* classAt(const QString& path) const override;
    [[nodiscard]] QStringList childrenOf(const QString& path) const override;
    void callServed() override;
    void callBegins(const PublishedObject& target) override;
    void callEnds() override { m_calls.pop_back(); }
    void busGone() override;

    // The root object: Application, Ports and the standard ObjectManager
    void bindApplication();
    [[nodiscard]] QString version() const;
    [[nodiscard]] ManagedObjects managedObjects(const Call& call);
    void tellCame(const QString& path, const PublishedObject& object);
    void tellGone(const QString& path, const PublishedObject& object) const;
    void tellOfObject(const char* member, const QVariantList& arguments) const;
    [[nodiscard]] QDBusObjectPath CreateInstance(const QString& strClass, const QString& client);
    void ReleaseInstance(const QString& path, const QString& client);

    [[nodiscard]] ManagerObject* operatingManager() const;
    [[nodiscard]] QString busyText() const;
    [[nodiscard]] bool userWaits() const;
    [[nodiscard]] PublishedObject globalObject() const;
    [[nodiscard]] std::shared_ptr<ManagerObject> makeManager(const QString& path);
    [[nodiscard]] std::shared_ptr<ManagerObject> globalManager(const QString& client);
    void dropUnusedGlobalManager();
    void watch(const QString& client);
    void clientGone(const QString& client);
    void release(const PublishedObject& published);
    void leave(std::shared_ptr<ManagerObject> manager);
    void removeLeaving();
    [[nodiscard]] bool anythingHeld() const;
    void giveUpName();
    void endUnlessCalled();

    ClientMessages m_messages;
    ErrorBoxScope m_errorBox;
    Platform m_platform; ///< with m_messages in it
    IDownloadWindowFactory& m_windows;
    IWaitDialogFactory& m_dialogs;
    ListenerFactory m_listeners;
    QDBusConnection m_connection;

    TypeLibrary m_library;
    BoundClass m_applicationClass;
    BoundClass m_managerClass;
    std::vector<BoundClass> m_classes;

    ObjectTable m_objects;
    std::vector<PublishedObject> m_calls; ///< that are served, the outermost first
    std::shared_ptr<ManagerObject> m_global;
    QSet<QString> m_globalClients;
    QSet<QString> m_watchedClients;
    std::vector<std::shared_ptr<ManagerObject>> m_leaving;

    ObjectTree m_tree;
    QDBusServiceWatcher m_watcher;
    QTimer m_globalTimer;
    QTimer m_leavingTimer;
    QTimer m_endTimer;
};

} // namespace fldc
