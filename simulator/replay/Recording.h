// What a host's download log says of one conversation or several: what was sent, and what the radio
// answered.
#pragma once

#include "Bytes.h"

#include <istream>
#include <vector>

namespace simulator {

/// One write of the host and everything that was received until the next.
struct Exchange {
    int line = 0;    // of the write in the log, from 1
    int session = 0; // how often the log had been opened before
    Bytes sent;
    Bytes answer;
    bool changesSpeed = false; // the answer comes once the host has changed its speed
};

/// Reads the lines with "Sent" and "Received"; others are notes. The start-up bytes after a reset
/// and after the command that restarts the radio, which no log has, are added as the conversation
/// behind them tells. Throws std::runtime_error, with
/// the line, for bytes that are not hexadecimal digits and for conversations that can't be played:
/// an answer to nothing, a log-on without a reset (it follows a power cycle).
std::vector<Exchange> readRecording(std::istream& log);

} // namespace simulator
