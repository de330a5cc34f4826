// The radio as its serial line knows it: it is reset, announces itself, is logged on to, may want a
// boot application, and then takes command frames until it restarts.
#pragma once

#include "device/UpgradeMode.h"
#include "wire/Line.h"

#include <optional>

namespace simulator {

/// Bytes come in one at a time with the moment at which each was complete, and nothing here waits:
/// what takes time sets a deadline, and the owner calls wake() when it is due. So the same radio
/// runs paced and unpaced, and a frame that stops in its middle is a deadline like any other.
///
///     Running --reset--> Started --log-on--> Commanded --restart--> Started
///                        Started --log-on--> Loading --boot application--> Commanded
///                        Started --nothing comes--> Running
class Radio {
public:
    /// Everything is used, not owned. The radio is switched on and runs its own software.
    Radio(const Profile& profile, Faults& faults, Memory& memory, Line& line, Log& log);

    void powerCycle(Time now);
    /// A byte whose last bit arrived at that time.
    void hear(std::uint8_t byte, Time at);
    /// When wake() is due; nothing while the radio waits for bytes only.
    std::optional<Time> deadline() const { return m_deadline; }
    void wake(Time now);
    /// Whether the line was pulled out, as a fault asked.
    bool isHungUp() const { return m_hungUp; }

private:
    enum class State {
        Running,   // its own software; hears the reset byte only
        Started,   // has said its start-up byte; hears a log-on
        Loading,   // takes the boot application, raw
        Commanded, // takes command frames
    };

    /// Forgets everything but the flash, and announces itself with the start-up byte.
    void restart(Time at, bool powerCycled);
    void hearLogOn(std::uint8_t byte, Time at);
    void logOn(bool special, Time at);
    void finishLoading(Time now);
    void hearCommand(std::uint8_t byte, Time at);
    void obeyFrame(Time at);
    void enter(State state) { m_state = state; }
    /// Says the pieces from that time on, as the faults leave them.
    void answer(const Effects& effects, const Pieces& pieces, Time at);
    bool isReset(std::uint8_t byte) const;
    /// Whether the radio has fallen silent for good. A command counts itself among those it has
    /// heard.
    bool isSilent(bool toCommand) const;
    int startingSpeed() const;
    void setSpeed(int speed);

    const Profile& m_profile;
    Faults& m_faults;
    Line& m_line;
    Log& m_log;
    UpgradeMode m_upgrade;

    State m_state = State::Running;
    std::optional<Time> m_deadline;
    bool m_powerCycled = false;
    bool m_hungUp = false;
    unsigned m_commandsHeard = 0;
    Bytes m_received; // of a log-on, a boot application or a frame
};

} // namespace simulator
