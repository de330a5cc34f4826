// What the radio says, in pieces that may be apart in time.
#pragma once

#include "Bytes.h"
#include "Clock.h"

#include <vector>

namespace simulator {

struct Piece {
    Bytes bytes;
    milliseconds pause{0}; // before the piece
};
using Pieces = std::vector<Piece>;

inline constexpr std::uint16_t doneWord = 0xAFAF;
inline constexpr std::uint16_t busyWord = 0xAEAE;

} // namespace simulator
