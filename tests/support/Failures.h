#pragma once

#include "platform/PlatformFailure.h"

namespace fldc {

/// Number of the failure that @p call raises; 0 when it raises none.
template <class Call>
[[nodiscard]] int failureNumber(const Call& call)
{
    try {
        (void)call();
        return 0;
    } catch (const PlatformFailure& failure) {
        return failure.number();
    }
}

} // namespace fldc
