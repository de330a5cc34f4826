#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace fldc::cli {

/// What stands on the command line. Texts are the system's bytes: file names need not be UTF-8.
/// A command sees its own options; the others have the values here.
struct Options {
    bool json = false;
    std::optional<std::string> log; ///< file that both logs are appended to

    std::optional<std::string> port; ///< "-" for the variable FLDC_PORT, as a missing PORT
    std::vector<std::string> ports;  ///< of a gang
    bool allPorts = false;
    bool repeat = false;
    bool promptUnit = false;
    std::vector<std::string> files;
    std::vector<std::string> components;

    // Commands that log on
    std::optional<std::string> bootFiles;       ///< folder of the boot applications
    std::optional<std::int32_t> powerCycleWait; ///< seconds
    std::string speed = "auto";                 ///< or a baud rate
    bool specialLogOn = false;
    bool allowFpga = false;
    std::optional<std::string> compression; ///< "standard" or "best"; else as the settings say
    std::int32_t rounds = 200;              ///< exchanges of link-test at each speed
    std::string unit;
    std::string job;
    std::optional<std::string> certificate; ///< folder

    // History
    std::optional<std::string> store; ///< else as variable and settings say
    std::string action;               ///< "list" and so on
    std::string record;               ///< beginning of a record's number
    std::string tag;
    std::string since;
    std::string until;
    std::string result; ///< "ok", "failed" or an exit code
    std::vector<std::string> outdated;
    std::int64_t limit = 100; ///< rows; 0 for all
    bool limitWasGiven = false;
};

} // namespace fldc::cli
