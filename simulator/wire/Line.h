// The serial line between host and radio: it takes speed seriously and, when paced, lets every byte
// take its time.
//
// A pseudo-terminal carries bytes at once and at any speed, so both are made here. What the host
// sends is heard only at the radio's speed, what the radio says while the host is at another speed,
// or while nobody has the line open, is lost. A radio that has just restarted or changed its speed
// is patient: hosts that share a busy machine may take longer than its own moments to follow.
//
// A host cannot wait for a pseudo-terminal to be drained, so it may change its speed right after
// writing. Bytes just read therefore count as sent at the speed sampled last before them or at the
// present one; the owner calls receive() often enough to keep the former fresh.
#pragma once

#include "Bytes.h"
#include "Clock.h"
#include "Log.h"
#include "wire/PseudoTerminal.h"

#include <deque>
#include <optional>
#include <string>

namespace simulator {

class Line {
public:
    /// A byte and the time at which its last bit has passed.
    struct TimedByte {
        std::uint8_t byte = 0;
        Time at{};
    };

    Line(PseudoTerminal& terminal, bool paced, Log& log)
        : m_terminal(terminal), m_paced(paced), m_log(log)
    {
    }

    // --- the radio's side
    /// `speed` in bit/s; a deaf line carries nothing either way.
    void setSpeed(int speed, bool deaf);
    int speed() const { return m_speed; }
    /// Puts the bytes behind what is still to be said, not before `notBefore`.
    void say(ByteView bytes, Time notBefore);
    /// Drops what is still to be said: the radio restarts.
    void forget();

    // --- the owner's loop
    /// Takes what the host has written, and looks at its speed: to be called every few
    /// milliseconds. Bytes at another speed than the radio's are told and dropped.
    void receive();
    /// The next byte that has arrived by `now`, in order.
    std::optional<TimedByte> next(Time now);
    /// Gives the host what is due, as far as the line takes it.
    void transmit(Time now);
    /// Whether the host does not read: there is more to transmit once the line can be written.
    bool isBlocked() const { return m_blocked; }
    /// When next() or transmit() have something to do; nothing when they have not.
    std::optional<Time> deadline(Time now) const;

private:
    Clock::duration byteTime() const;
    /// What the host has written before and, where that has just changed, since its present speed.
    Bytes takeFromHost();
    /// Why the host can't hear the radio now; empty when it can.
    std::string obstacle() const;
    /// Whether what is due waits for a host that has not followed yet, or has only just.
    bool waitsForHost(const std::string& obstacle, Time now);

    PseudoTerminal& m_terminal;
    bool m_paced;
    Log& m_log;
    int m_speed = 19200;
    bool m_deaf = false;
    int m_sampledSpeed = 0;
    bool m_blocked = false;
    Time m_patientUntil{};
    Time m_hostReadyAt{};
    std::deque<TimedByte> m_heard;
    std::deque<TimedByte> m_toSay;
    Time m_lastHeard{};
    Time m_lastSaid{};
};

} // namespace simulator
