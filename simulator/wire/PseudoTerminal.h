// The radio's end of the line: the master of a pseudo-terminal, never blocking.
#pragma once

#include "Bytes.h"
#include "Clock.h"

#include <optional>
#include <string>

namespace simulator {

class PseudoTerminal {
public:
    /// Opens a pseudo-terminal whose slave is the host's port. Throws std::system_error.
    PseudoTerminal();
    ~PseudoTerminal();
    PseudoTerminal(const PseudoTerminal&) = delete;
    PseudoTerminal& operator=(const PseudoTerminal&) = delete;

    /// The slave's name, such as /dev/pts/3.
    const std::string& path() const { return m_path; }
    /// For poll: readable when the host has written.
    int descriptor() const { return m_master; }
    /// For poll: readable when the host has opened or closed the line; -1 when that is not to be
    /// known.
    int watchDescriptor() const { return m_watch; }

    /// What is waiting, without waiting for it.
    Bytes read();
    /// Writes what the line takes now and returns how many bytes that were.
    std::size_t write(ByteView bytes);

    /// The speed in bit/s that the host has set, as it is at this moment; 0 for one that radios
    /// don't use.
    int hostSpeed() const;
    /// Whether a host has the line open. Always true where openings cannot be watched.
    bool hostPresent();
    /// Whether the host has written lately what read() has not given yet: the system carries bytes
    /// from one end to the other in its own time. Always false where openings cannot be watched.
    bool hasUnread();

    /// The host sees the line hung up, as if its adapter had been pulled out.
    void hangUp();

private:
    void watchOpenings();
    /// What the host has done to the line since: opened, closed, written. None without a watch.
    void takeReports();

    int m_master = -1;
    // Kept open and raw for the whole life: without it the master fails while no host has the line
    // open, and the terminal would echo what the radio says to the radio.
    int m_slave = -1;
    int m_watch = -1;
    int m_openings = 0;
    std::optional<Time> m_writtenAt;
    std::string m_path;
};

} // namespace simulator
