#include "platform/qt/bus/DesktopSession.h"

#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QVariantMap>

#include <functional>
#include <memory>
#include <utility>

namespace fldc {

using namespace Qt::StringLiterals;

namespace {

// Flags of the portal's Inhibit: log-out, and suspending the machine.
constexpr quint32 logOutAndSuspend = 1 | 4;

constexpr int desktopsOwnTimeout = -1;

struct Service {
    QString name;
    QString path;
    QString interface;
};

const Service login{u"org.freedesktop.login1"_s, u"/org/freedesktop/login1"_s,
                    u"org.freedesktop.login1.Manager"_s};
const Service portal{u"org.freedesktop.portal.Desktop"_s, u"/org/freedesktop/portal/desktop"_s,
                     u"org.freedesktop.portal.Inhibit"_s};
const Service screenSaver{u"org.freedesktop.ScreenSaver"_s, u"/org/freedesktop/ScreenSaver"_s,
                          u"org.freedesktop.ScreenSaver"_s};
const Service notifications{u"org.freedesktop.Notifications"_s, u"/org/freedesktop/Notifications"_s,
                            u"org.freedesktop.Notifications"_s};

QDBusMessage message(const Service& service, const QString& member, const QVariantList& arguments)
{
    QDBusMessage call =
        QDBusMessage::createMethodCall(service.name, service.path, service.interface, member);
    call.setArguments(arguments);
    return call;
}

bool isAnswer(const QDBusMessage& answer)
{
    return answer.type() == QDBusMessage::ReplyMessage && !answer.arguments().isEmpty();
}

} // namespace

DesktopSession::DesktopSession(QString program, Buses buses)
    : m_program(std::move(program)), m_buses(std::move(buses))
{
}

DesktopSession::~DesktopSession()
{
    allowEnd();
}

QDBusConnection DesktopSession::session()
{
    if (!m_buses.session)
        m_buses.session = QDBusConnection::sessionBus();
    return *m_buses.session;
}

QDBusConnection DesktopSession::system()
{
    if (!m_buses.system)
        m_buses.system = QDBusConnection::systemBus();
    return *m_buses.system;
}

void DesktopSession::prepare()
{
    (void)session();
    (void)system();
}

void DesktopSession::call(const QDBusConnection& bus, const QDBusMessage& message,
                          std::function<void(const QDBusMessage& answer)> done)
{
    if (!bus.isConnected())
        return;
    auto* watcher =
        new QDBusPendingCallWatcher(bus.asyncCall(message, desktopsOwnTimeout), m_asked.get());
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, m_asked.get(),
                     [watcher, done = std::move(done)] {
                         done(watcher->reply());
                         watcher->deleteLater();
                     });
}

void DesktopSession::preventEnd(const QString& why)
{
    if (m_asked)
        return;
    m_asked = std::make_unique<QObject>();
    call(system(), message(login, u"Inhibit"_s, {u"shutdown:sleep"_s, m_program, why, u"block"_s}),
         [this](const QDBusMessage& answer) {
             if (isAnswer(answer))
                 m_login = answer.arguments().constFirst().value<QDBusUnixFileDescriptor>();
         });
    askPortal(why);
}

void DesktopSession::askPortal(const QString& why)
{
    call(session(),
         message(portal, u"Inhibit"_s,
                 {QString(), logOutAndSuspend, QVariantMap{{u"reason"_s, why}}}),
         [this, why](const QDBusMessage& answer) {
             if (isAnswer(answer))
                 m_portalRequest = answer.arguments().constFirst().value<QDBusObjectPath>().path();
             else
                 askScreenSaver(why);
         });
}

void DesktopSession::askScreenSaver(const QString& why)
{
    call(session(), message(screenSaver, u"Inhibit"_s, {m_program, why}),
         [this](const QDBusMessage& answer) {
             if (isAnswer(answer))
                 m_screenSaverCookie = answer.arguments().constFirst().toUInt();
         });
}

// A service whose answer is still to come ends what it has granted when that answer finds nobody:
// the login manager's lock closes with its descriptor. The portal and the screen saver end theirs
// with the connection.
void DesktopSession::allowEnd()
{
    if (!m_asked)
        return;
    m_asked.reset();
    m_login = {};
    if (const QString request = std::exchange(m_portalRequest, {}); !request.isEmpty())
        session().send(
            message({portal.name, request, u"org.freedesktop.portal.Request"_s}, u"Close"_s, {}));
    if (const auto cookie = std::exchange(m_screenSaverCookie, std::nullopt))
        session().send(message(screenSaver, u"UnInhibit"_s, {*cookie}));
}

void DesktopSession::notify(const QString& title, const QString& text)
{
    const QDBusConnection bus = session();
    if (bus.isConnected())
        bus.send(message(notifications, u"Notify"_s,
                         {m_program, 0U, u"rv4100_fldc"_s, title, text.toHtmlEscaped(),
                          QStringList(), QVariantMap(), desktopsOwnTimeout}));
}

} // namespace fldc
