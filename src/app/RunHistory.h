#pragma once

#include "history/StoreChoice.h"
#include "session/Listener.h"

#include <QJsonObject>
#include <QString>

#include <functional>
#include <memory>

namespace fldc {

class clsDLManager;
struct Platform;

/// The history of the program's downloads and erasures, where the setting History asks for one.
///
/// A record is put into the spool when its operation has ended. A process of its own, this program
/// called with deliveryArgument, brings it to the store: a server that is down, or does not answer,
/// holds up neither a window nor a client of the bus.
class RunHistory {
public:
    static constexpr QStringView deliveryArgument = u"--deliver-history";

    /// @p complain: says on standard error what is wrong.
    RunHistory(const Platform& platform, std::function<void(const QString&)> complain)
        : m_platform(platform), m_complain(std::move(complain))
    {
    }

    /// The listener that records what @p manager does, and shall outlive it; null without a
    /// history. The first call reads the setting, says why there is no history where one is asked
    /// for, and has delivered what still waits.
    [[nodiscard]] std::unique_ptr<session::IListener> listenerFor(clsDLManager& manager);

    /// What the process of a delivery does. Needs a QCoreApplication. Returns the exit code: 0, or
    /// 1 when records still wait.
    [[nodiscard]] static int deliver();

private:
    void choose();
    void record(const QJsonObject& certificate) const;
    void startDelivery() const;

    const Platform& m_platform;
    std::function<void(const QString&)> m_complain;
    bool m_isChosen = false;
    history::ChosenStore m_store;
};

} // namespace fldc
