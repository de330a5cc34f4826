#include "Options.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <stdexcept>

namespace simulator {

namespace {

constexpr const char* description =
    "A two-way radio on a pseudo-terminal, to be upgraded without owning one.\n"
    "It prints the name of its port and then, line by line, what happens to it.\n"
    "SIGUSR1 writes the flash dump, SIGUSR2 power-cycles the radio, SIGINT and SIGTERM end it.\n";

} // namespace

std::optional<Options> readOptions(int argc, char** argv, int& exitCode)
{
    Options options;
    std::string profile = "rv4200";
    bool list = false;
    std::vector<std::string> faults;
    std::vector<std::string> profileNames;
    for (const Profile& known : profiles())
        profileNames.emplace_back(known.name);

    CLI::App app(description, "radio_simulator");
    app.footer(faultHelp());
    app.add_option("--profile", profile, "Which radio to be")
        ->type_name("NAME")
        ->check(CLI::IsMember(profileNames))
        ->capture_default_str();
    app.add_flag("--list-profiles", list,
                 "Show the radios with their memory and components, and end");
    app.add_option("--link", options.link, "Symbolic link to make to the port")->type_name("PATH");
    app.add_option("--flash", options.flash,
                   "File to write the flash to, at the end and on SIGUSR1")
        ->type_name("FILE");
    app.add_option("--flash-in", options.flashIn, "Start with the flash that --flash wrote earlier")
        ->type_name("FILE");
    app.add_flag("--pace", options.pace, "Bytes take the time on the line that their speed gives");
    app.add_option("--fault", faults, "A fault to have; repeatable, see below")
        ->type_name("FAULT")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    app.add_option("--log", options.log, "File for every byte with its time; - for standard output")
        ->type_name("FILE");
    app.add_option("--replay", options.replay,
                   "Play the radio's side of a download log; ends when the host is through with it "
                   "(exit code 0) or departs from it (3)")
        ->type_name("LOG")
        ->excludes("--profile", "--flash", "--flash-in", "--fault", "--pace");
    app.add_option("--for", options.seconds, "End after so many seconds")
        ->type_name("SECONDS")
        ->check(CLI::NonNegativeNumber);
    try {
        app.parse(argc, argv);
        for (const std::string& text : faults) {
            try {
                options.faults.push_back(parseFault(text));
            } catch (const std::invalid_argument& error) {
                throw CLI::ValidationError("--fault " + text, error.what());
            }
        }
    } catch (const CLI::ParseError& error) {
        exitCode = app.exit(error) == 0 ? 0 : 2;
        return std::nullopt;
    }
    if (list) {
        listProfiles(std::cout);
        exitCode = 0;
        return std::nullopt;
    }
    options.profile = findProfile(profile);
    return options;
}

} // namespace simulator
