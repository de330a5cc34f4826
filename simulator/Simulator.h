// Brings radio and line together and serves both, one event after the other, until it is told to
// end.
#pragma once

#include "Link.h"
#include "Options.h"
#include "device/Radio.h"

#include <optional>

namespace simulator {

/// One thread and one poll(): the line, signals and the earliest
/// deadline. It never blocks on the line: a host that stops reading must not stop the radio's
/// clock.
class Simulator {
public:
    /// The pseudo-terminal is open and linked, and the signals of the process are handled here,
    /// when this returns. Throws std::exception when something that was asked for cannot be had.
    explicit Simulator(const Options& options);
    ~Simulator();
    Simulator(const Simulator&) = delete;
    Simulator& operator=(const Simulator&) = delete;

    /// Returns at SIGINT, SIGTERM, SIGHUP, the end of the time given, or when the line was pulled
    /// out; the flash dump is then written.
    void run();

private:
    void waitForSomething();
    void serve(Time now);
    void handleSignals(Time now);
    void powerCycleInTime(Time now);
    void save();

    const Options m_options;
    Log m_log;
    Faults m_faults;
    Memory m_memory;
    PseudoTerminal m_terminal;
    Line m_line;
    Radio m_radio;
    int m_signals; // before the link, which tells others that the radio is there
    Link m_link;
    bool m_ended = false;
    std::optional<Time> m_end;
    std::optional<Time> m_powerCycleAt;
};

} // namespace simulator
