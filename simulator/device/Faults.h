// The faults that the radio was told to have: --fault NAME[@EVENT[:N]][=VALUE].
//
// An event is a command that the radio hears (its code as two hexadecimal digits), "start" (it
// restarts and sends its start-up byte), "logon" (it answers a log-on) or "boot" (it has received
// the boot application). N counts the events of that kind from 1: "2" the second, "2+" the second
// and all after it, "2-4" a range; without it the fault holds every time.
#pragma once

#include "device/Answer.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace simulator {

enum class FaultKind {
    Refuse,
    Busy,
    BusyList,
    Corrupt,
    Garbage,
    Reply,
    Cut,
    Split,
    Delay,
    Silent,
    HangUp,
    SilentAfter,
    Unknown,
    Deaf,
    IgnoresSpeed,
    AnswersAt,
    PowerCycle,
    F1PowerCycle,
    PowerCycleAfter,
    AlreadyInUpgradeMode,
};

/// Something that happens at the radio and that a fault can be tied to: a command code, or one of
/// the three others.
using Event = int;
inline constexpr Event startEvent = 0x100;
inline constexpr Event logOnEvent = 0x101;
inline constexpr Event bootEvent = 0x102;

struct Fault {
    FaultKind kind;
    std::optional<Event> event; // every event when empty
    unsigned first = 1;         // of the events that it holds for, counted from 1
    unsigned last = ~0U;        // the last of them
    unsigned number =
        0; // count, speed in bit/s, milliseconds, seconds, word or code, as the kind wants
    milliseconds gap{0}; // between busy words or pieces
    Bytes bytes;
};

/// Reads one --fault argument. Throws std::invalid_argument with a message for the user.
Fault parseFault(std::string_view text);
/// One paragraph per fault, for --help.
std::string faultHelp();

/// What the faults do to one event.
struct Effects {
    bool hangUp = false;                  // in place of carrying it out
    bool silent = false;                  // carried out without an answer
    std::optional<std::uint16_t> refusal; // the word to refuse with, in place of carrying it out
    std::vector<Fault> shaping;           // applied to the answer in this order

    /// The answer as the faults leave it.
    Pieces shape(Pieces pieces) const;
};

/// All faults of a radio, and how often each event has happened to it.
class Faults {
public:
    explicit Faults(std::vector<Fault> faults) : m_faults(std::move(faults)) {}

    /// Counts the event and returns what holds for it.
    Effects meet(Event event);

    bool has(FaultKind kind) const { return number(kind).has_value(); }
    /// The value of the first fault of that kind.
    std::optional<unsigned> number(FaultKind kind) const;
    /// Whether there is a fault of that kind with that value.
    bool has(FaultKind kind, unsigned value) const;

private:
    std::vector<Fault> m_faults;
    std::map<Event, unsigned> m_counts;
};

} // namespace simulator
