// The command line.
#pragma once

#include "device/Faults.h"
#include "device/Profiles.h"

#include <optional>
#include <string>

namespace simulator {

struct Options {
    const Profile* profile = nullptr;
    std::string link;
    std::string flash;
    std::string flashIn;
    std::string log;
    std::string replay; // a host's log; empty for a simulated radio
    bool pace = false;
    std::optional<double> seconds; // how long to run
    std::vector<Fault> faults;
};

/// Reads the arguments. Returns nothing when the program is to end now with `exitCode`, what there
/// is to say having been said.
std::optional<Options> readOptions(int argc, char** argv, int& exitCode);

} // namespace simulator
