#pragma once

namespace fldc {

/// How the copies are made that a radio is sent compressed.
enum class Compression {
    Zlib, ///< each run of addresses gets a compressed copy where that is smaller: zlib's default
    Best, ///< likewise, 2 to 5 % shorter and slower to make: the shorter of zlib's and libdeflate's
    None, ///< the radio will be sent the plain bytes
};

} // namespace fldc
