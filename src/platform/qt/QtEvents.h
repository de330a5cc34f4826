#pragma once

#include "platform/IEvents.h"

namespace fldc {

/// The event loop of the calling thread. The one place that calls processEvents().
class QtEvents final : public IEvents {
public:
    void processPending() override;
    void waitForEvents() override;
    void pause(std::chrono::milliseconds duration) override;
};

} // namespace fldc
