// Plays the radio's side of a recorded conversation, byte for byte, and says where the host departs
// from it. Speeds are not compared: a log does not hold them.
#pragma once

#include "Clock.h"
#include "Link.h"
#include "Log.h"
#include "Options.h"
#include "replay/Recording.h"
#include "wire/PseudoTerminal.h"

#include <optional>
#include <vector>

namespace simulator {

class Replay {
public:
    /// The pseudo-terminal is open and linked when this returns. Throws std::exception when the log
    /// can't be read or played.
    explicit Replay(const Options& options);
    ~Replay();
    Replay(const Replay&) = delete;
    Replay& operator=(const Replay&) = delete;

    /// Returns when the host has sent everything and closed the line, has departed from the log, or
    /// at a signal or the end of the time given. True when it sent just what the log says.
    bool run();

private:
    void waitForSomething();
    void hear(const Bytes& bytes);
    void writeHeard(Time now);
    void answer(Time now);
    void depart(std::string_view what);
    bool isComplete() const { return m_next == m_exchanges.size(); }
    bool hostHasLeft();

    const std::vector<Exchange> m_exchanges;
    Log m_log;
    PseudoTerminal m_terminal;
    Link m_link;
    int m_signals;
    std::optional<Time> m_end;

    std::size_t m_next = 0; // exchange whose write is expected
    Bytes m_heard;          // of that write
    Bytes m_toSay;
    std::optional<Time> m_sayAt;        // when m_toSay is due; while it waits for another speed,
    std::optional<int> m_speedToChange; // the latest time for it
    bool m_departed = false;
    bool m_ended = false;
};

} // namespace simulator
