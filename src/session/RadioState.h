#pragma once

#include "session/Events.h"

#include <QStringView>

namespace fldc::session {

/// What a run has made of the radio.
enum class State : std::uint8_t {
    Untouched,     ///< nothing was sent, or no radio was concerned
    Reset,         ///< it was reset and is not yet logged on
    UpgradeMode,   ///< logged on, nothing unlocked
    Unlocked,      ///< blocks are unlocked, none erased
    Erased,        ///< at least one block erased and nothing written into it
    PartlyWritten, ///< data written, not all of it
    Written,       ///< a target's data are all written, its blocks still unlocked
    Locked,        ///< everything begun in this run is written and locked
    Restarted,     ///< restarted, with nothing half done in it
};

/// How a state is named to programs and told to people.
struct StateText {
    State state;
    QStringView name;
    QStringView meaning; ///< what it means for the radio: one sentence
    QStringView advice;  ///< what to do next: one sentence
};

[[nodiscard]] const StateText& textOf(State state);

/// What to do next in @p state of the radio, behind a run that ended with @p code. A boot
/// application that can't be sent is mended in another way than a radio that says nothing.
[[nodiscard]] QStringView adviceOf(State state, Code code);

/// The states as the fold tells them apart: "partly written" is two. While a run writes its first
/// target, erasing again empties what was written; once earlier targets are whole it does not.
enum class Condition : std::uint8_t {
    Untouched,
    Reset,
    UpgradeMode,
    Unlocked,
    Erased,
    PartlyWritten,
    LaterTarget, ///< partly written too: from the unlocking for a further target on
    Written,
    Locked,
    Restarted,
};

/// What is known of a radio from the events so far. At any moment, also when no further event
/// comes, it is the worst that may be true: a step that was sent and has no answer counts as done
/// (reset, unlock, erase, data) or as not done (lock, restart). Only a refusal takes it back.
struct Radio {
    Condition now = Condition::Untouched;
    Condition beforeStep = Condition::Untouched; ///< what a refusal goes back to
};

/// @p radio after @p event. An OperationStarted begins a new run.
[[nodiscard]] Radio fold(Radio radio, const Event& event);

[[nodiscard]] State stateOf(const Radio& radio);

} // namespace fldc::session
