#pragma once

#include <cstdint>

namespace fldc {
class clsFile;
}

namespace fldc::cli {

/// What it takes to write an image into one place of a radio that takes compressed data: per table
/// a frame with its address, then its data in frames, each answered before the next is sent.
struct WireUse {
    std::int64_t frames = 0;    ///< with an address or with data
    std::int64_t dataBytes = 0; ///< in the data frames, without what frames add: compressed where
                                ///< the table has compressed data, padded to an even number
    std::int64_t lineBytes = 0; ///< everything on the line, both ways

    /// The time of the line's bytes at that speed: 10 bits each (8 data bits, no parity, 1 stop
    /// bit). Nothing else is counted: not the radio's time, no other command, no erase.
    [[nodiscard]] double seconds(std::uint32_t baud) const
    {
        return static_cast<double>(lineBytes) * 10.0 / baud;
    }
    WireUse& operator+=(const WireUse& other);
};

/// @p image must be finished: read to its end from a valid file.
[[nodiscard]] WireUse wireUseOf(const clsFile& image);

} // namespace fldc::cli
