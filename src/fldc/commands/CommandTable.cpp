#include "fldc/commands/CommandTable.h"

#include <algorithm>

namespace fldc::cli {

using namespace Qt::StringLiterals;

namespace {

constexpr std::array commandTable{
    Command{"ports", "List the serial ports, without opening one", PortUse::None, {}, runPorts},
    Command{"report",
            "Read the radio's configurations",
            PortUse::Needed,
            {addPortOrDefault, addLogOn},
            runReport},
    Command{"check",
            "Compare the radio's configurations with those of a radio as it should be",
            PortUse::Needed,
            {addPortOrDefault, addExpectation, addLogOn},
            runCheck},
    Command{"download",
            "Write firmware files into the radio",
            PortUse::Needed,
            {addPort, addFiles, addLogOn, addDownload, addStore},
            runDownload},
    Command{"gang",
            "Write the same firmware into the radios of several ports at once",
            PortUse::None,
            {addFiles, addGang, addLogOn, addDownload, addStore},
            runGang},
    Command{"erase",
            "Erase components of the radio",
            PortUse::Needed,
            {addPort, addComponents, addLogOn, addStore},
            runErase},
    Command{"restart",
            "Restart the radio, whatever it is doing",
            PortUse::Needed,
            {addPortOrDefault, addLogOn},
            runRestart},
    Command{"inspect",
            "Show what firmware files hold; needs no radio",
            PortUse::None,
            {addFiles},
            runInspect},
    Command{"plan",
            "Tell what a download would do, and how long it would take",
            PortUse::Optional,
            {addFiles, addPortOption, addCompression, addLogOn},
            runPlan},
    Command{"link-test",
            "Tell whether the line is good enough to write over; sends no flash command",
            PortUse::Needed,
            {addPortOrDefault, addLogOn, addRounds},
            runLinkTest},
    Command{"doctor",
            "Tell why a port can't be used; sends nothing",
            PortUse::Optional,
            {addPortOrDefault},
            runDoctor},
    Command{"certificate", "Show a certificate", PortUse::None, {addOneFile}, runCertificate},
    Command{"history",
            "Tell what was written to which unit",
            PortUse::None,
            {addHistory, addStore},
            runHistory},
};

} // namespace

std::span<const Command> commands()
{
    return commandTable;
}

const Command* findCommand(std::string_view name)
{
    const auto* found = std::ranges::find(commandTable, name, &Command::name);
    return found == commandTable.end() ? nullptr : found;
}

} // namespace fldc::cli
