#pragma once

#include "platform/PlatformFailure.h"
#include "platform/qt/QtEvents.h"
#include "platform/qt/QtTimers.h"

#include <chrono>
#include <functional>

namespace fldc {

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

/// Number of the PlatformFailure that @p action throws; 0 when it throws none.
inline int failureNumber(const std::function<void()>& action)
{
    try {
        action();
    } catch (const PlatformFailure& failure) {
        return failure.number();
    }
    return 0;
}

/// Serves events until @p condition holds; false when it does not within 5 s.
inline bool waitUntil(const std::function<bool()>& condition)
{
    QtEvents events;
    QtTimers timers;
    bool late = timers.start(5s, [&late] { late = true; }) == 0;
    while (!condition() && !late)
        events.waitForEvents();
    return !late;
}

} // namespace fldc
