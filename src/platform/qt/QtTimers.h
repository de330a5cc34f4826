#pragma once

#include "platform/ITimers.h"

#include <QObject>

#include <memory>
#include <vector>

namespace fldc {

/// Timers of the thread that made the object, precise to a millisecond. A callback that throws is
/// shown with the shared error box; its timer goes on. While a callback runs (it may wait for
/// events) its own timer does not fire again.
class QtTimers final : private QObject, public ITimers {
public:
    [[nodiscard]] int start(std::chrono::milliseconds period,
                            std::function<void()> callback) override;
    void stop(int id) noexcept override;

private:
    struct Timer {
        int id = 0; ///< Qt's own
        /// Shared, so that a callback may stop its own timer.
        std::shared_ptr<const std::function<void()>> callback;
    };

    void timerEvent(QTimerEvent* event) override;

    std::vector<Timer> m_timers;
};

} // namespace fldc
