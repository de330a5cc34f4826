#pragma once

#include <QString>

namespace fldc {

/// What the desktop's session is asked for. Nothing here fails or throws, nor waits for an answer:
/// where the desktop has no such service, nothing happens.
class IDesktopSession {
public:
    virtual ~IDesktopSession() = default;

    /// Connects to the services, which may take a while on a bus that is ill: to be called before
    /// anything is at stake.
    virtual void prepare() = 0;
    /// From now on the machine shall not be suspended, shut down or logged out of, because of
    /// @p why (one sentence), until allowEnd(). A second call changes nothing.
    virtual void preventEnd(const QString& why) = 0;
    virtual void allowEnd() = 0;
    /// Shows a short notice beside whatever the user is doing.
    virtual void notify(const QString& title, const QString& text) = 0;
};

} // namespace fldc
