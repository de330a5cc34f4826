#include "automation/AutomationServer.h"

#include "automation/BusNames.h"
#include "automation/PublishedClasses.h"
#include "automation/root/Ports.h"
#include "manager/Operation.h"
#include "platform/IMessageBox.h"
#include "platform/IProgramInfo.h"

#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QDBusError>
#include <QDBusMessage>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <utility>

namespace fldc {

using namespace std::chrono_literals;

namespace {

// For the first call of the client that had the process started.
constexpr auto startGrace = 10s;
// Between one client's leaving and the next one's first call.
constexpr auto endGrace = 1s;
// How long the global object outlives the last client that used it: a shell script is a new client
// with each of its calls.
constexpr auto globalGrace = 10s;
// How often to look whether a manager that nobody holds has ended its operation.
constexpr auto leavingInterval = 50ms;

int failed(const char* what, const QString& why)
{
    std::fprintf(stderr, "rv4100_fldc: %s: %s\n", what, qUtf8Printable(why));
    return 1;
}

Platform withMessages(const Platform& platform, IMessageBox& messages)
{
    return {platform.events,         platform.timers,   platform.clock,
            platform.files,          platform.settings, platform.ports,
            platform.serialControls, platform.program,  messages};
}

} // namespace

AutomationServer::AutomationServer(const Platform& platform, IDownloadWindowFactory& windows,
                                   IWaitDialogFactory& dialogs, ListenerFactory listeners)
    : m_messages(platform.messages, [this] { return userWaits(); }), m_errorBox(m_messages),
      m_platform(withMessages(platform, m_messages)), m_windows(windows), m_dialogs(dialogs),
      m_listeners(std::move(listeners)), m_connection(QDBusConnection::sessionBus()),
      m_applicationClass(BoundClass::of<AutomationServer>(
          QLatin1StringView("Application"), interfaceName(QLatin1StringView("Application")))),
      m_managerClass(managerClassBinding()), m_classes(supportingClasses()),
      m_objects(
          {[this](const QString& path, const PublishedObject& object) { tellCame(path, object); },
           [this](const QString& path, const PublishedObject& object) { tellGone(path, object); }}),
      m_tree(m_library, *this)
{
    bindApplication();
    m_library.verify(m_applicationClass);
    m_library.verify(m_managerClass);
    for (const BoundClass& bound : m_classes)
        m_library.verify(bound);

    m_watcher.setConnection(m_connection);
    m_watcher.setWatchMode(QDBusServiceWatcher::WatchForUnregistration);
    QObject::connect(&m_watcher, &QDBusServiceWatcher::serviceUnregistered, &m_tree,
                     [this](const QString& client) { clientGone(client); });
    m_globalTimer.setSingleShot(true);
    m_globalTimer.setInterval(globalGrace);
    m_globalTimer.callOnTimeout([this] { dropUnusedGlobalManager(); });
    m_leavingTimer.setInterval(leavingInterval);
    m_leavingTimer.callOnTimeout([this] { removeLeaving(); });
    m_endTimer.setSingleShot(true);
    m_endTimer.callOnTimeout([this] { giveUpName(); });
}

AutomationServer::~AutomationServer()
{
    m_connection.unregisterObject(rootPath, QDBusConnection::UnregisterTree);
}

void AutomationServer::bindApplication()
{
    m_applicationClass
        .method("CreateInstance",
                [](AutomationServer& server, const Call& call, const QString& strClass) {
                    return server.CreateInstance(strClass, call.client);
                })
        .method("ReleaseInstance",
                [](AutomationServer& server, const Call& call, const QDBusObjectPath& instance) {
                    server.ReleaseInstance(instance.path(), call.client);
                });
    registerRootTypes();
    auto ports = BoundClass::of<AutomationServer>(QLatin1StringView("Ports"),
                                                  interfaceName(QLatin1StringView("Ports")));
    ports.method("ListPorts",
                 [](AutomationServer& server) { return listPorts(server.m_platform.ports); });
    ports.property("Version", &AutomationServer::version);
    auto objects = BoundClass::of<AutomationServer>(objectManager, objectManager);
    objects.method("GetManagedObjects", [](AutomationServer& server, const Call& call) {
        return server.managedObjects(call);
    });
    m_applicationClass.also(std::move(ports)).also(std::move(objects));
}

QString AutomationServer::version() const
{
    const ProgramVersion version = m_platform.program.version();
    return QStringLiteral("%1.%2.%3").arg(version.major).arg(version.minor).arg(version.revision);
}

ManagedObjects AutomationServer::managedObjects(const Call& call)
{
    ManagedObjects all;
    const auto insert = [&](const QString& path, const PublishedObject& object) {
        all.insert(QDBusObjectPath(path), object.bound->values(object.object.get(), call));
    };
    if (m_global)
        insert(classPath(managerClass), globalObject());
    const auto objects = m_objects.byPath();
    for (auto object = objects.begin(); object != objects.end(); ++object)
        insert(object.key(), *object);
    return all;
}

void AutomationServer::tellCame(const QString& path, const PublishedObject& object)
{
    const InterfaceValues values =
        object.bound->values(object.object.get(), {*this, object.client});
    tellOfObject("InterfacesAdded",
                 {QVariant::fromValue(QDBusObjectPath(path)), QVariant::fromValue(values)});
}

void AutomationServer::tellGone(const QString& path, const PublishedObject& object) const
{
    tellOfObject("InterfacesRemoved",
                 {QVariant::fromValue(QDBusObjectPath(path)), object.bound->interfaces()});
}

void AutomationServer::tellOfObject(const char* member, const QVariantList& arguments) const
{
    QDBusMessage signal =
        QDBusMessage::createSignal(rootPath, objectManager, QString::fromLatin1(member));
    signal.setArguments(arguments);
    m_connection.send(signal);
}

int AutomationServer::run()
{
    if (!m_connection.isConnected())
        return failed("no session bus", m_connection.lastError().message());
    // The objects first: the bus delivers the waiting calls as soon as the name is there.
    if (!m_connection.registerVirtualObject(rootPath, &m_tree, QDBusConnection::SubPath) ||
        !m_connection.registerService(busName))
        return failed("the name is taken on the session bus", busName);
    // No client's leaving is heard of any more when the bus ends, as at the end of a desktop
    // session.
    m_connection.connect({}, QStringLiteral("/org/freedesktop/DBus/Local"),
                         QStringLiteral("org.freedesktop.DBus.Local"),
                         QStringLiteral("Disconnected"), &m_tree, SLOT(onDisconnected()));
    // A window that its user closes ends no client's work. (A property, because only programs with
    // a display have it.)
    QCoreApplication::instance()->setProperty("quitOnLastWindowClosed", false);
    m_endTimer.start(startGrace);
    const int exitCode = QCoreApplication::exec();
    m_connection.unregisterService(busName);
    return exitCode;
}

void AutomationServer::interrupt()
{
    const auto published = m_objects.all();
    for (const PublishedObject& object : published)
        release(object);
    if (m_global)
        m_global->endWork();
    // Also what a user started in a window.
    for (const auto& manager : m_leaving)
        manager->endWork();
    m_platform.messages.dismiss();
    QCoreApplication::exit(0);
}

// -- Objects and their paths

QString AutomationServer::pathOf(const AnyObject& object, const QString& client)
{
    const auto bound = std::ranges::find(m_classes, object.type, &BoundClass::type);
    if (bound == m_classes.end())
        throw PlatformFailure(FailureNumber::Internal);
    return m_objects.publish(*bound, object.object, client);
}

std::shared_ptr<void> AutomationServer::objectAt(const QString& path, std::type_index type)
{
    const PublishedObject* published = m_objects.find(path);
    if (!published)
        throw BusError{unknownObject, excerpt(path)};
    if (published->bound->type() != type)
        throw PlatformFailure(FailureNumber::TypeMismatch);
    return published->object;
}

PublishedObject AutomationServer::objectFor(const QString& path, const QString& client)
{
    // Also one that holds nothing: what it asks of another client's manager ends with it.
    watch(client);
    if (path == rootPath)
        return {&m_applicationClass, {std::shared_ptr<void>(), this}, {}};
    if (path == classPath(managerClass))
        return {&m_managerClass, globalManager(client), client};
    if (const PublishedObject* published = m_objects.find(path))
        return *published;
    throw BusError{unknownObject, excerpt(path)};
}

const BoundClass* AutomationServer::classAt(const QString& path) const
{
    if (path == rootPath)
        return &m_applicationClass;
    if (path == classPath(managerClass))
        return &m_managerClass;
    if (const PublishedObject* published = m_objects.find(path))
        return published->bound;
    if (childrenOf(path).isEmpty())
        throw BusError{unknownObject, excerpt(path)};
    return nullptr;
}

QStringList AutomationServer::childrenOf(const QString& path) const
{
    QSet<QString> names = m_objects.children(path);
    if (path == rootPath)
        names.insert(managerClass);
    return names.values();
}

// -- Application

QDBusObjectPath AutomationServer::CreateInstance(const QString& strClass, const QString& client)
{
    if (strClass == managerClass) {
        return QDBusObjectPath(m_objects.publishNew(
            m_managerClass, client, [this](const QString& path) { return makeManager(path); }));
    }
    const auto bound = std::ranges::find(m_classes, strClass, &BoundClass::name);
    if (bound == m_classes.end() || !bound->create())
        throw BusError{invalidArguments,
                       QStringLiteral("there is no class to create with the name ") +
                           excerpt(strClass)};
    return QDBusObjectPath(pathOf({bound->type(), bound->create()()}, client));
}

void AutomationServer::ReleaseInstance(const QString& path, const QString& client)
{
    if (path == classPath(managerClass) && m_globalClients.remove(client)) {
        m_global->endWorkOf(client);
        m_globalTimer.start();
        return;
    }
    const PublishedObject* published = m_objects.find(path);
    if (!published)
        throw BusError{unknownObject, excerpt(path)};
    if (published->client != client)
        throw BusError{accessDenied, path + QStringLiteral(" is held by another client")};
    if (const auto released = m_objects.release(path))
        release(*released);
}

std::shared_ptr<ManagerObject> AutomationServer::makeManager(const QString& path)
{
    return std::make_shared<ManagerObject>(m_platform, m_windows, m_dialogs, m_listeners,
                                           m_connection, path, [this] { return busyText(); });
}

PublishedObject AutomationServer::globalObject() const
{
    return {&m_managerClass, m_global, {}};
}

ManagerObject* AutomationServer::operatingManager() const
{
    std::vector<std::shared_ptr<ManagerObject>> managers = m_leaving;
    if (m_global)
        managers.push_back(m_global);
    for (const PublishedObject& object : m_objects.byPath()) {
        if (object.bound == &m_managerClass)
            managers.push_back(std::static_pointer_cast<ManagerObject>(object.object));
    }
    const auto found = std::ranges::find_if(
        managers, [](const auto& manager) { return manager->manager().operates(); });
    return found == managers.end() ? nullptr : found->get();
}

QString AutomationServer::busyText() const
{
    const ManagerObject* const manager = operatingManager();
    const QString holder = manager ? manager->holder() : QString();
    return QStringLiteral("another operation runs, ") +
           (holder.isEmpty() ? QStringLiteral("of the window's user")
                             : QString(QStringLiteral("of the client ") + holder));
}

// Of the call that is served, or of the task that runs. Else it is a user in a window.
bool AutomationServer::userWaits() const
{
    if (!m_calls.empty())
        return m_calls.back().bound == &m_managerClass &&
               std::static_pointer_cast<ManagerObject>(m_calls.back().object)->manager().UIMode();
    const ManagerObject* const manager = operatingManager();
    return !manager || manager->manager().UIMode();
}

void AutomationServer::callBegins(const PublishedObject& target)
{
    m_calls.push_back(target);
}

std::shared_ptr<ManagerObject> AutomationServer::globalManager(const QString& client)
{
    if (!m_global) {
        m_global = makeManager(classPath(managerClass));
        tellCame(classPath(managerClass), globalObject());
    }
    m_globalClients.insert(client);
    return m_global;
}

void AutomationServer::dropUnusedGlobalManager()
{
    if (!m_globalClients.isEmpty() || !m_global)
        return;
    if (m_global->windowVisible()) {
        m_globalTimer.start();
        return;
    }
    tellGone(classPath(managerClass), globalObject());
    leave(std::exchange(m_global, nullptr));
}

// -- Life of the objects

// A client may be gone before its first call is served; nothing would be heard of it then.
void AutomationServer::watch(const QString& client)
{
    if (m_watchedClients.contains(client))
        return;
    m_watchedClients.insert(client);
    m_watcher.addWatchedService(client);
    if (!m_connection.interface()->isServiceRegistered(client))
        QMetaObject::invokeMethod(
            &m_tree, [this, client] { clientGone(client); }, Qt::QueuedConnection);
}

void AutomationServer::clientGone(const QString& client)
{
    m_watcher.removeWatchedService(client);
    m_watchedClients.remove(client);
    for (const PublishedObject& object : m_objects.releaseAll(client))
        release(object);
    if (m_globalClients.remove(client)) {
        m_global->endWorkOf(client);
        m_globalTimer.start();
    }
    // What it asked of other clients' managers ends, too.
    const auto others = m_objects.all();
    for (const PublishedObject& object : others) {
        if (object.bound == &m_managerClass)
            std::static_pointer_cast<ManagerObject>(object.object)->endWorkOf(client);
    }
    callServed();
}

void AutomationServer::release(const PublishedObject& published)
{
    if (published.bound == &m_managerClass)
        leave(std::static_pointer_cast<ManagerObject>(published.object));
}

// The manager may be in the middle of an operation, below this call on the stack.
void AutomationServer::leave(std::shared_ptr<ManagerObject> manager)
{
    manager->abandon();
    m_leaving.push_back(std::move(manager));
    removeLeaving();
}

void AutomationServer::removeLeaving()
{
    if (!operationRuns()) {
        const auto stay =
            std::stable_partition(m_leaving.begin(), m_leaving.end(),
                                  [](const auto& manager) { return manager->windowVisible(); });
        const std::vector<std::shared_ptr<ManagerObject>> gone(stay, m_leaving.end());
        m_leaving.erase(stay, m_leaving.end());
    }
    if (m_leaving.empty())
        m_leavingTimer.stop();
    else if (!m_leavingTimer.isActive())
        m_leavingTimer.start();
    callServed();
}

// -- End of the process

bool AutomationServer::anythingHeld() const
{
    return !m_objects.isEmpty() || m_global || !m_leaving.empty();
}

void AutomationServer::callServed()
{
    if (anythingHeld())
        m_endTimer.stop();
    else if (!m_endTimer.isActive())
        m_endTimer.start(endGrace);
}

void AutomationServer::busGone()
{
    interrupt();
}

// From here on the bus starts a new process for new calls. Those that it has delivered already are
// served first: they wait in the queue before the last look.
void AutomationServer::giveUpName()
{
    m_connection.unregisterService(busName);
    QMetaObject::invokeMethod(
        &m_tree, [this] { endUnlessCalled(); }, Qt::QueuedConnection);
}

void AutomationServer::endUnlessCalled()
{
    if (anythingHeld())
        m_connection.registerService(busName);
    else
        QCoreApplication::exit(0);
}

} // namespace fldc
