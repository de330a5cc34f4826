#include "session/RadioState.h"

#include <algorithm>
#include <array>

namespace fldc::session {

namespace {

constexpr std::array texts{
    StateText{State::Untouched, u"untouched", u"Nothing in the radio was touched.",
              u"Mend what the message names, then start again."},
    StateText{State::Reset, u"reset",
              u"The radio was reset and did not log on; nothing in it was changed.",
              u"Check radio, cable and port, switch the radio off and on, then start again."},
    StateText{State::UpgradeMode, u"upgrade-mode",
              u"The radio is in its upgrade mode; nothing in it was changed.",
              u"Start again, or switch the radio off and on to use it as it was."},
    StateText{State::Unlocked, u"unlocked",
              u"Flash of the radio is unlocked, but nothing in it was erased.",
              u"Start again, or switch the radio off and on to use it as it was."},
    StateText{State::Erased, u"erased",
              u"Flash of the radio is erased, or may be, and nothing was written into it.",
              u"Download the component again before the radio is used, unless it was to go."},
    StateText{State::PartlyWritten, u"partly-written",
              u"The radio holds only a part of what was to be written.",
              u"Download all files again before the radio is used."},
    StateText{State::Written, u"written",
              u"A component is written completely, but its flash is not known to be locked.",
              u"Download all files again before the radio is used."},
    StateText{State::Locked, u"locked", u"Everything that was begun is written and locked.",
              u"Switch the radio off and on, then compare its configurations with the files."},
    StateText{State::Restarted, u"restarted",
              u"The radio was restarted and nothing in it is half done.",
              u"Nothing is left to do but to look at what was reported."},
};

static_assert(std::ranges::adjacent_find(texts, std::ranges::greater_equal{}, &StateText::state) ==
                      texts.end() &&
                  texts.size() == static_cast<std::size_t>(State::Restarted) + 1,
              "each state once, in order");

// No other file is read once the radio was reset.
constexpr auto bootFileAdvice =
    u"Put the boot application there, switch the radio off and on, then start again; fldc takes "
    u"another folder with --boot-files.";

constexpr std::size_t steps = 6;
constexpr std::size_t outcomes = 4;
constexpr std::size_t events = std::variant_size_v<Event>;

// Kinds of event: each step with each outcome, then the other events in the order of the variant,
// then the log-on of a radio that needs its boot application first.
constexpr std::size_t kindOf(Step step, Outcome outcome)
{
    return static_cast<std::size_t>(step) * outcomes + static_cast<std::size_t>(outcome);
}

constexpr std::size_t kindOfIndex(std::size_t index)
{
    return steps * outcomes + index - 1;
}

constexpr std::size_t loggedOnWithoutBootApplication = kindOfIndex(events);
constexpr std::size_t kinds = loggedOnWithoutBootApplication + 1;

template <class T, class... Ts>
constexpr std::size_t positionIn(const std::variant<Ts...>* /*type*/)
{
    constexpr std::array same{std::is_same_v<T, Ts>...};
    return static_cast<std::size_t>(std::ranges::find(same, true) - same.begin());
}

template <class T>
constexpr std::size_t kind = kindOfIndex(positionIn<T>(static_cast<const Event*>(nullptr)));

std::size_t kindOf(const Event& event)
{
    if (const auto* step = std::get_if<StepTaken>(&event))
        return kindOf(step->step, step->outcome);
    const auto* logOn = std::get_if<LoggedOn>(&event);
    return logOn != nullptr && logOn->needsBootApplication ? loggedOnWithoutBootApplication
                                                           : kindOfIndex(event.index());
}

constexpr auto U = Condition::Untouched;
constexpr auto R = Condition::Reset;
constexpr auto M = Condition::UpgradeMode;
constexpr auto L = Condition::Unlocked;
constexpr auto E = Condition::Erased;
constexpr auto P = Condition::PartlyWritten;
constexpr auto T = Condition::LaterTarget;
constexpr auto W = Condition::Written;
constexpr auto K = Condition::Locked;
constexpr auto S = Condition::Restarted;

constexpr std::array publicStates{State::Untouched,     State::Reset,   State::UpgradeMode,
                                  State::Unlocked,      State::Erased,  State::PartlyWritten,
                                  State::PartlyWritten, State::Written, State::Locked,
                                  State::Restarted};
constexpr std::size_t conditions = publicStates.size();

/// What one kind of event makes of each condition, in the order of the enumeration.
struct Row {
    template <class... Next>
    constexpr explicit Row(std::size_t ofKind, Next... cells) : kind(ofKind), next{cells...}
    {
        static_assert(sizeof...(Next) == conditions, "a cell for each condition");
    }
    std::size_t kind;
    std::array<Condition, conditions> next;
};

// A refused step is taken back before its row is read: it did nothing.
//
// What is not obvious:
// - Erased, partly written and written flash stays what it is, whatever is reset, logged on or
//   restarted around it. Locking erased flash leaves it erased.
// - Locking is believed only behind the last answered data of a target (Written). In a further
//   target's middle it would lock what is erased.
// - A restart is sent to a radio that logged on before; where none did (Untouched) it is a reset at
//   least, which its answer completes.
// - Flash that is unlocked and locked again without an erase is as it was: upgrade mode.
// clang-format off
constexpr std::array table{
    //                                              U  R  M  L  E  P  T  W  K  S
    Row{kindOf(Step::Reset, Outcome::Sent),         R, R, R, R, E, P, T, W, K, R},
    Row{kindOf(Step::Reset, Outcome::Done),         R, R, R, R, E, P, T, W, K, R},
    Row{kindOf(Step::Reset, Outcome::Refused),      U, R, M, L, E, P, T, W, K, S},
    Row{kindOf(Step::Reset, Outcome::Unanswered),   R, R, R, R, E, P, T, W, K, R},
    Row{kindOf(Step::Unlock, Outcome::Sent),        L, L, L, L, E, P, T, T, T, L},
    Row{kindOf(Step::Unlock, Outcome::Done),        L, L, L, L, E, P, T, T, T, L},
    Row{kindOf(Step::Unlock, Outcome::Refused),     U, R, M, L, E, P, T, W, K, S},
    Row{kindOf(Step::Unlock, Outcome::Unanswered),  L, L, L, L, E, P, T, T, T, L},
    Row{kindOf(Step::Erase, Outcome::Sent),         E, E, E, E, E, E, T, T, T, E},
    Row{kindOf(Step::Erase, Outcome::Done),         E, E, E, E, E, E, T, T, T, E},
    Row{kindOf(Step::Erase, Outcome::Refused),      U, R, M, L, E, P, T, W, K, S},
    Row{kindOf(Step::Erase, Outcome::Unanswered),   E, E, E, E, E, E, T, T, T, E},
    Row{kindOf(Step::Data, Outcome::Sent),          P, P, P, P, P, P, T, T, T, P},
    Row{kindOf(Step::Data, Outcome::Done),          P, P, P, P, P, P, T, T, T, P},
    Row{kindOf(Step::Data, Outcome::Refused),       U, R, M, L, E, P, T, W, K, S},
    Row{kindOf(Step::Data, Outcome::Unanswered),    P, P, P, P, P, P, T, T, T, P},
    Row{kindOf(Step::Lock, Outcome::Sent),          U, R, M, L, E, P, T, W, K, S},
    Row{kindOf(Step::Lock, Outcome::Done),          U, R, M, M, E, P, T, K, K, S},
    Row{kindOf(Step::Lock, Outcome::Refused),       U, R, M, L, E, P, T, W, K, S},
    Row{kindOf(Step::Lock, Outcome::Unanswered),    U, R, M, L, E, P, T, W, K, S},
    Row{kindOf(Step::Restart, Outcome::Sent),       R, R, M, L, E, P, T, W, K, S},
    Row{kindOf(Step::Restart, Outcome::Done),       U, S, S, S, E, P, T, W, S, S},
    Row{kindOf(Step::Restart, Outcome::Refused),    U, R, M, L, E, P, T, W, K, S},
    Row{kindOf(Step::Restart, Outcome::Unanswered), U, R, M, L, E, P, T, W, K, S},
    Row{kind<OperationStarted>,                     U, U, U, U, U, U, U, U, U, U},
    Row{kind<LineOpened>,                           U, R, M, L, E, P, T, W, K, S},
    Row{kind<PowerCycleRequired>,                   U, R, M, L, E, P, T, W, K, S},
    Row{kind<LoggedOn>,                             M, M, M, L, E, P, T, W, K, M},
    Row{kind<BootApplicationSent>,                  M, M, M, L, E, P, T, W, K, M},
    Row{kind<SpeedAgreed>,                          U, R, M, L, E, P, T, W, K, S},
    Row{kind<ConfigurationsRead>,                   U, R, M, L, E, P, T, W, K, S},
    Row{kind<ErasureChosen>,                        U, R, M, L, E, P, T, W, K, S},
    Row{kind<TargetBegun>,                          U, R, M, L, E, P, T, W, K, S},
    Row{kind<BlocksDone>,                           U, R, M, L, E, P, T, W, K, S},
    Row{kind<TableBegun>,                           U, R, M, L, E, P, T, W, K, S},
    Row{kind<DataProgress>,                         U, R, M, L, E, P, T, W, K, S},
    Row{kind<TargetWritten>,                        U, R, M, L, E, W, W, W, K, S},
    Row{kind<CommandRepeated>,                      U, R, M, L, E, P, T, W, K, S},
    Row{kind<UnexpectedBytes>,                      U, R, M, L, E, P, T, W, K, S},
    Row{kind<LinkMeasured>,                         U, R, M, L, E, P, T, W, K, S},
    Row{kind<OperationEnded>,                       U, R, M, L, E, P, T, W, K, S},
    Row{loggedOnWithoutBootApplication,             R, R, M, L, E, P, T, W, K, R},
};
// clang-format on

constexpr bool isComplete()
{
    for (std::size_t i = 0; i < table.size(); ++i) {
        if (table.at(i).kind != i)
            return false;
    }
    return table.size() == kinds;
}

static_assert(isComplete(), "each kind of event once, in order");

} // namespace

const StateText& textOf(State state)
{
    return texts.at(static_cast<std::size_t>(state));
}

QStringView adviceOf(State state, Code code)
{
    const bool bootFile = state == State::Reset &&
                          (code == Code::FileDoesNotExist || code == Code::FileFormatNotValid);
    return bootFile ? QStringView(bootFileAdvice) : textOf(state).advice;
}

Radio fold(Radio radio, const Event& event)
{
    const auto* step = std::get_if<StepTaken>(&event);
    const bool refused = step != nullptr && step->outcome == Outcome::Refused;
    const bool sent = step != nullptr && step->outcome == Outcome::Sent;
    const Condition from = refused ? radio.beforeStep : radio.now;
    const Condition to = table.at(kindOf(event)).next.at(static_cast<std::size_t>(from));
    return {to, sent ? from : to};
}

State stateOf(const Radio& radio)
{
    return publicStates.at(static_cast<std::size_t>(radio.now));
}

} // namespace fldc::session
