#pragma once

#include <functional>

namespace fldc {

/// Called every few milliseconds by what takes long on the one thread, so that others are served
/// meanwhile; false asks to give up. Once false, it stays so. May throw nothing.
using Pace = std::function<bool()>;

/// Whether to go on; nobody's pace is never to give up.
[[nodiscard]] inline bool goesOn(const Pace& pace)
{
    return !pace || pace();
}

} // namespace fldc
