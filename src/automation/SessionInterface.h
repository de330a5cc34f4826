#pragma once

#include "session/Listener.h"
#include "session/Narrator.h"
#include "session/RadioState.h"

#include <QElapsedTimer>
#include <QString>
#include <QVariantList>
#include <QVariantMap>

#include <functional>

namespace fldc {

class clsDLManager;

/// The interface Session of a manager on the bus: its operations as properties with
/// PropertiesChanged, as events, and as one Completed each.
class SessionInterface final : private session::IListener {
public:
    struct Surroundings {
        /// Sends a signal of an interface from the manager's path; must not throw.
        std::function<void(const QString& interface, const char* member, const QVariantList&)> send;
        /// Unique name of the client whose operation runs; empty for none.
        std::function<QString()> holder;
    };
    /// @p manager must outlive the object.
    SessionInterface(clsDLManager& manager, Surroundings surroundings);
    ~SessionInterface() override;
    SessionInterface(const SessionInterface&) = delete;
    SessionInterface& operator=(const SessionInterface&) = delete;

    [[nodiscard]] QVariant value(const QString& property) const { return m_values.value(property); }

private:
    void onEvent(const session::Event& event) noexcept override;
    void follow(const session::Event& event);
    void begin(const QString& operation);
    void tellEvent(session::Telling told);
    void complete(int code, const QString& message);
    void showTransfer();
    void set(const char* property, const QVariant& value);
    void tellChanges();

    clsDLManager& m_manager;
    Surroundings m_surroundings;
    session::Narrator m_narrator;
    session::Radio m_radio;
    QElapsedTimer m_clock;
    QElapsedTimer m_begun;     ///< when the operation did
    qint64 m_transferTold = 0; ///< when on m_clock
    QVariantMap m_values;
    QVariantMap m_changed; ///< not told yet
};

} // namespace fldc
