#include "fldc/options/OptionGroups.h"

#include "fldc/options/Options.h"
#include "platform/qt/ProgramInfo.h"

#include <CLI/CLI.hpp>

namespace fldc::cli {

namespace {

constexpr const char* portHelp =
    "COM3, 3, a device path, usb:SERIAL, rfc2217://HOST:PORT or a pinned name; - for the variable "
    "FLDC_PORT";

} // namespace

void addPort(CLI::App& command, Options& options)
{
    command.add_option("PORT", options.port, portHelp)->required();
}

void addPortOrDefault(CLI::App& command, Options& options)
{
    command.add_option("PORT", options.port, portHelp);
}

void addPortOption(CLI::App& command, Options& options)
{
    command.add_option("--port", options.port, portHelp)->type_name("PORT");
}

void addFiles(CLI::App& command, Options& options)
{
    command
        .add_option("FILE", options.files, "Firmware files; behind -- also names that begin with -")
        ->required();
}

void addOneFile(CLI::App& command, Options& options)
{
    command.add_option("FILE", options.files, "A certificate")->required()->expected(1);
}

void addExpectation(CLI::App& command, Options& options)
{
    command
        .add_option("--expect", options.files,
                    "What `fldc report --json` has written for a radio as it should be")
        ->type_name("FILE")
        ->required()
        ->expected(1);
}

void addComponents(CLI::App& command, Options& options)
{
    command
        .add_option(
            "COMPONENT", options.components,
            "Product identifiers as the report shows them, or #2 for the second of its list")
        ->required();
}

void addLogOn(CLI::App& command, Options& options)
{
    command.add_option("--boot-files", options.bootFiles, "Folder of the boot applications")
        ->type_name("DIR");
    command
        .add_option("--power-cycle-wait", options.powerCycleWait,
                    "How long to wait for a radio that must be switched off and on")
        ->type_name("S")
        ->check(CLI::Range(0, 1'000'000));
}

void addDownload(CLI::App& command, Options& options)
{
    command.add_option("--speed", options.speed, "Speed of the line")
        ->type_name("BAUD")
        ->check(CLI::IsMember({"auto", "115200", "57600", "19200", "9600"}));
    command.add_flag("--special-log-on", options.specialLogOn,
                     "Log on by the special sequence, behind a power cycle");
    command.add_flag("--allow-fpga", options.allowFpga, "Write FPGA images too (special log-on)");
    addCompression(command, options);
    command.add_option("--unit", options.unit, "The radio's name in the certificate")
        ->type_name("TEXT");
    command.add_option("--job", options.job, "The job's name in the certificate")
        ->type_name("TEXT");
    command
        .add_option("--certificate", options.certificate, "Write a certificate into this folder")
        ->type_name("DIR");
}

void addGang(CLI::App& command, Options& options)
{
    CLI::Option* ports =
        command.add_option("--port", options.ports, portHelp)->type_name("PORT")->expected(1);
    ports->take_all();
    command
        .add_flag("--all", options.allPorts,
                  "All ports that are free, and all remote lines of the settings")
        ->excludes(ports);
    command.add_flag("--repeat", options.repeat,
                     "Start the next radio by itself when it is plugged in place of one that is "
                     "done; until it is ended");
    command.add_flag("--prompt-unit", options.promptUnit,
                     "Read the name of each unit from standard input (a barcode reader)");
}

void addRounds(CLI::App& command, Options& options)
{
    command.add_option("--rounds", options.rounds, "Exchanges at each speed")
        ->type_name("N")
        ->check(CLI::Range(1, 100'000))
        ->capture_default_str();
}

void addCompression(CLI::App& command, Options& options)
{
    command.add_option("--compression", options.compression, "How the data are compressed")
        ->type_name("standard|best")
        ->check(CLI::IsMember({"standard", "best"}));
}

void addStore(CLI::App& command, Options& options)
{
    command
        .add_option("--store", options.store,
                    "Where the history is kept: postgresql://USER@HOST/DATABASE or sqlite:PATH")
        ->type_name("STORE");
}

void addHistory(CLI::App& command, Options& options)
{
    command
        .add_option(
            "ACTION", options.action,
            "list records, show one, export them (CSV; with --json JSON Lines), list units, "
            "or deliver what waits")
        ->required()
        ->check(CLI::IsMember({"list", "show", "export", "units", "deliver"}));
    command.add_option("RECORD", options.record, "Number of a record, or its beginning");
    command.add_option("--unit", options.unit, "Of this unit")->type_name("TEXT");
    command.add_option("--tag", options.tag, "That wrote or erased this")->type_name("TAG");
    command.add_option("--since", options.since, "From this day or time on")->type_name("TIME");
    command.add_option("--until", options.until, "To the end of this day, or before this time")
        ->type_name("TIME");
    command.add_option("--result", options.result, "That ended so")->type_name("ok|failed|EXIT");
    command
        .add_option("--outdated", options.outdated,
                    "units: that have another version than this, or were left incomplete")
        ->type_name("TAG");
    command
        .add_option_function<std::int64_t>(
            "--limit",
            [&options](std::int64_t limit) {
                options.limit = limit;
                options.limitWasGiven = true;
            },
            "At most that many; 0 for all [100; export: all]")
        ->type_name("N")
        ->check(CLI::NonNegativeNumber);
}

void addGeneral(CLI::App& command, Options& options)
{
    const ProgramVersion version = ProgramInfo().version();
    command.add_flag("--json", options.json, "Print JSON Lines on standard output")
        ->disable_flag_override();
    command.add_option("--log", options.log, "Append every exchange with the radio to this file")
        ->type_name("FILE");
    command.set_version_flag("--version", "fldc " + std::to_string(version.major) + "." +
                                              std::to_string(version.minor) + "." +
                                              std::to_string(version.revision));
}

} // namespace fldc::cli
