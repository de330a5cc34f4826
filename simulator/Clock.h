// The one clock of the simulator. Everything that happens on the line is placed on it as an
// absolute time, so that lateness in waking up never adds up.
#pragma once

#include <chrono>

namespace simulator {

using Clock = std::chrono::steady_clock;
using Time = Clock::time_point;
using std::chrono::milliseconds;

} // namespace simulator
