#pragma once

#include "platform/ShowError.h"

namespace fldc {

/// Calls @p callback from a place that no exception may leave: Qt's event dispatcher does not
/// survive one. What the callback throws is shown with the shared error box.
/// For notifiers and timers, whose callbacks are other levels' code; what is expected to fail in
/// one reports through the last error and throws nothing.
template <typename Callback>
void callGuarded(const Callback& callback) noexcept
{
    try {
        callback();
    } catch (...) {
        ShowError(currentFailure());
    }
}

} // namespace fldc
