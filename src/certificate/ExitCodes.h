#pragma once

#include <QStringView>

#include <algorithm>
#include <array>

namespace fldc {

enum class Exit {
    Done = 0,
    Usage = 1,
    NothingToDo = 2,
    File = 3,
    Port = 4,
    NoConversation = 5,
    Refused = 6,
    Incomplete = 7,
    NotConfirmed = 8,
    PartlyMatched = 9,
    Unexpected = 10,
    HungUp = 129,
    Interrupted = 130,
    OutputLost = 141,
    Terminated = 143,
};

struct ExitMeaning {
    Exit code;
    QStringView meaning;
};

/// The exit codes with their meaning, in order of precedence: of those that apply to a run, it ends
/// with the one that stands first.
inline constexpr std::array exitCodes{
    ExitMeaning{Exit::Interrupted, u"cancelled (SIGINT)"},
    ExitMeaning{Exit::Terminated, u"ended by SIGTERM"},
    ExitMeaning{Exit::HungUp, u"ended by SIGHUP"},
    ExitMeaning{Exit::OutputLost, u"standard output went away"},
    ExitMeaning{Exit::Incomplete, u"incomplete: download again before use"},
    ExitMeaning{Exit::NotConfirmed, u"all written and locked, but not confirmed"},
    ExitMeaning{Exit::Unexpected, u"an unexpected failure of the program"},
    ExitMeaning{Exit::Refused, u"refused by the radio before the first erase"},
    ExitMeaning{Exit::NoConversation, u"no conversation with the radio before the first erase"},
    ExitMeaning{Exit::Port, u"the port can't be used"},
    ExitMeaning{Exit::File, u"a file is missing or not valid"},
    ExitMeaning{Exit::PartlyMatched, u"some files matched no component"},
    ExitMeaning{Exit::NothingToDo, u"nothing to do"},
    ExitMeaning{Exit::Usage, u"wrong usage"},
    ExitMeaning{Exit::Done, u"done"},
};

/// The one of two exit codes that a run to which both apply ends with.
[[nodiscard]] constexpr Exit foremost(Exit a, Exit b)
{
    return std::ranges::find_if(
               exitCodes, [&](const ExitMeaning& row) { return row.code == a || row.code == b; })
        ->code;
}

/// The exit code of a process that the signal @p number (SIGHUP, SIGINT, SIGTERM) has ended.
[[nodiscard]] constexpr Exit exitOfSignal(int number)
{
    return static_cast<Exit>(128 + number);
}

} // namespace fldc
