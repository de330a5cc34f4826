#pragma once

#include "certificate/Outcome.h"
#include "fldc/options/OptionGroups.h"

#include <QJsonObject>

#include <array>
#include <functional>

namespace fldc {
struct Platform;
}

namespace fldc::cli {

class InputFiles;
struct NamedPort;
class Output;
class OutputLoss;
struct Options;

/// What a command works with.
struct Context {
    const Options& options;
    Output& output;
    const NamedPort& port; ///< empty for a command that has none
    InputFiles& files;     ///< those of options.files, read
    Platform& platform;
    OutputLoss& outputLoss;
    /// True once the run is to end: a signal came, or standard output was lost before an erase.
    std::function<bool()> wantsEnd;
    std::function<int()> signal; ///< the one that came, 0 for none
    QJsonObject started;         ///< the line that was told at the start
    /// Called when the result is known and about to be told; what it throws makes the run end with
    /// exit code 10 where nothing worse has happened. What it needs must outlive the command.
    std::function<void(const QJsonObject& result)>& beforeResult;
    /// Called when everything is told and written; must not throw. Likewise.
    std::function<void()>& afterResult;
    /// Waits until standard output has taken what was told, or a signal comes: for long tables.
    std::function<void()> catchUp;
};

enum class PortUse {
    None,
    Optional, ///< goes without when none was named
    Needed,   ///< FLDC_PORT when none was named
};

/// A command of the program: a row of the table in CommandTable.cpp.
struct Command {
    const char* name;
    const char* summary;
    PortUse port;
    std::array<OptionGroup, 5> groups; ///< null where there are fewer
    Outcome (*run)(Context& context);
};

} // namespace fldc::cli
