#pragma once

#include <functional>

namespace fldc {

/// How the copies are made that a radio is sent compressed.
enum class Compression {
    Zlib, ///< each run of addresses gets a compressed copy where that is smaller: zlib's default
    Best, ///< likewise, 2 to 5 % shorter and slower to make: the shorter of zlib's and libdeflate's
    None, ///< the radio will be sent the plain bytes
};

/// Called every few milliseconds by what takes long on the one thread, so that others are served
/// meanwhile; false asks to give up. Once false, it stays so. May throw nothing. @p share of the
/// work that is done, from 0 to 1; never less than before.
using Pace = std::function<bool(double share)>;

/// Whether to go on; nobody's pace is never to give up.
[[nodiscard]] inline bool goesOn(const Pace& pace, double share)
{
    return !pace || pace(share);
}

} // namespace fldc
