// The radio's end of the line: the master of a pseudo-terminal, never blocking.
#pragma once

#include "Bytes.h"

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
    /// For poll: readable when the host has written. While no host has the line open it is hung up,
    /// which poll reports at once; who waits then leaves it out.
    int descriptor() const { return m_master; }
    /// All that the host has written until now, without waiting for more.
    Bytes read();
    /// Writes what the line takes now and returns how many bytes that were.
    std::size_t write(ByteView bytes);

    /// The speed in bit/s that the host has set, as it is at this moment; 0 for one that radios
    /// don't use.
    int hostSpeed() const;
    /// Whether a host has the line open.
    bool hostPresent() const;

    /// The host sees the line hung up, as if its adapter had been pulled out.
    void hangUp();

private:
    int m_master = -1;
    std::string m_path;
};

} // namespace simulator
