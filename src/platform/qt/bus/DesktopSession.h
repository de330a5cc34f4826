#pragma once

#include "platform/IDesktopSession.h"

#include <QDBusConnection>
#include <QDBusUnixFileDescriptor>
#include <QObject>

#include <functional>
#include <memory>

#include <optional>

class QDBusMessage;
class QDBusPendingCall;

namespace fldc {

/// The desktop's session over D-Bus: the login manager keeps the machine from being suspended and
/// shut down, the desktop's portal (or, where there is none, its screen saver's interface) the
/// session from ending. Every call is asynchronous.
class DesktopSession final : public IDesktopSession {
public:
    /// The buses to speak to; those of the process when not given.
    struct Buses {
        std::optional<QDBusConnection> session;
        std::optional<QDBusConnection> system;
    };
    /// @p program: shown by the services as who asks.
    explicit DesktopSession(QString program, Buses buses = {});
    ~DesktopSession() override;
    DesktopSession(const DesktopSession&) = delete;
    DesktopSession& operator=(const DesktopSession&) = delete;

    void prepare() override;
    void preventEnd(const QString& why) override;
    void allowEnd() override;
    void notify(const QString& title, const QString& text) override;

private:
    [[nodiscard]] QDBusConnection session();
    [[nodiscard]] QDBusConnection system();
    /// Calls @p done with the answer, unless the session may end again by then: the object's own
    /// end included.
    void call(const QDBusConnection& bus, const QDBusMessage& message,
              std::function<void(const QDBusMessage& answer)> done);
    void askPortal(const QString& why);
    void askScreenSaver(const QString& why);

    QString m_program;
    Buses m_buses;
    std::unique_ptr<QObject> m_asked; ///< lives while the session is to stay; ends late answers
    QDBusUnixFileDescriptor m_login;  ///< the login manager's lock
    QString m_portalRequest;
    std::optional<quint32> m_screenSaverCookie;
};

} // namespace fldc
