#pragma once

#include <QString>

namespace fldc {

/// What the desktop's session is asked for. Nothing here waits, fails or throws: where the desktop
/// has no such service, nothing happens.
class IDesktopSession {
public:
    virtual ~IDesktopSession() = default;

    /// From now on the machine shall not be suspended, shut down or logged out of, because of
    /// @p why (one sentence), until allowEnd(). A second call changes nothing.
    virtual void preventEnd(const QString& why) = 0;
    virtual void allowEnd() = 0;
    /// Shows a short notice beside whatever the user is doing.
    virtual void notify(const QString& title, const QString& text) = 0;
};

} // namespace fldc
