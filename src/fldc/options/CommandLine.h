#pragma once

#include "certificate/Outcome.h"
#include "fldc/options/Options.h"

#include <QString>

#include <optional>
#include <string>
#include <vector>

namespace fldc::cli {

struct Command;

/// What a command line asks for: a text to print, a command to run, or neither.
struct CommandLine {
    const Command* command = nullptr; ///< null when none was recognised
    Options options;                  ///< json is right also when nothing else was understood
    QString text;                     ///< of --help or --version; nothing is to be run then
    std::optional<Outcome> error;     ///< wrong usage
};

/// Reads the arguments behind the program's name.
[[nodiscard]] CommandLine readCommandLine(const std::vector<std::string>& arguments);

} // namespace fldc::cli
