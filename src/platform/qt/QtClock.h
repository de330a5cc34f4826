#pragma once

#include "platform/IClock.h"

namespace fldc {

class QtClock final : public IClock {
public:
    [[nodiscard]] QDateTime now() const override { return QDateTime::currentDateTime(); }
    [[nodiscard]] std::chrono::microseconds monotonic() const override
    {
        return std::chrono::duration_cast<std::chrono::microseconds>(
            std::chrono::steady_clock::now().time_since_epoch());
    }
};

} // namespace fldc
