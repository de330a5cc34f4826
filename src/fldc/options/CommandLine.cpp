#include "fldc/options/CommandLine.h"

#include "fldc/commands/CommandTable.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <array>

namespace fldc::cli {

using namespace Qt::StringLiterals;

namespace {

constexpr const char* description =
    "Downloads firmware to two-way radios, for scripts, production lines and people.\n";
constexpr const char* footer =
    "\nfldc COMMAND --help shows the options of a command. With --json the last line of standard\n"
    "output is the result; its exit codes are explained in docs/fldc.md.\n";

// Also where nothing else of the command line is understood.
bool asksForJson(const std::vector<std::string>& arguments)
{
    const auto end = std::ranges::find(arguments, "--");
    return std::any_of(arguments.begin(), end, [](const std::string& argument) {
        return argument == "--json" || argument.starts_with("--json=");
    });
}

// CLI11 takes a "--" in a subcommand for the subcommand's end once it has enough arguments, and an
// argument in square brackets for a list. So the arguments behind "--", which is left out, and
// those that begin with a bracket are marked, as something that is neither; the mark is taken off
// what was read.
constexpr char plainArgument = '\x01';

std::vector<std::string> marked(std::vector<std::string> arguments)
{
    const auto end = std::ranges::find(arguments, "--");
    for (auto argument = arguments.begin(); argument != arguments.end(); ++argument) {
        if (argument > end || argument->starts_with('['))
            argument->insert(0, 1, plainArgument);
    }
    if (end != arguments.end())
        arguments.erase(end);
    return arguments;
}

void unmark(std::string& argument)
{
    if (argument.starts_with(plainArgument))
        argument.erase(0, 1);
}

void unmark(std::optional<std::string>& argument)
{
    if (argument)
        unmark(*argument);
}

void unmark(Options& options)
{
    for (auto* value :
         {&options.log, &options.port, &options.bootFiles, &options.certificate, &options.store})
        unmark(*value);
    for (auto* value : {&options.unit, &options.job, &options.tag})
        unmark(*value);
    for (auto* values : {&options.files, &options.components, &options.ports, &options.outdated})
        std::ranges::for_each(*values, [](std::string& value) { unmark(value); });
}

void declare(CLI::App& app, const Command& command, Options& options)
{
    CLI::App& added = *app.add_subcommand(command.name, command.summary);
    for (const OptionGroup add : command.groups) {
        if (add != nullptr)
            add(added, options);
    }
    addGeneral(added, options);
}

const Command* recognised(const CLI::App& app)
{
    const auto found = app.get_subcommands();
    return found.empty() ? nullptr : findCommand(found.front()->get_name());
}

Outcome wrongUsage(const CLI::App& app, const Command* command, const CLI::ParseError& error)
{
    const auto text = [](const std::string& bytes) {
        return QString::fromStdString(bytes).remove(QLatin1Char(plainArgument));
    };
    if (command != nullptr)
        return usageError(text(error.what()),
                          u"`fldc %1 --help` shows its options."_s.arg(text(command->name)));
    const auto left = app.remaining();
    const QString advice = u"`fldc --help` lists the commands."_s;
    if (left.empty())
        return usageError(error.get_exit_code() == static_cast<int>(CLI::ExitCodes::RequiredError)
                              ? u"No command was given."_s
                              : text(error.what()),
                          advice);
    if (left.front().starts_with('-'))
        return usageError(u"There is no option "_s + text(left.front()) + u'.', advice);
    return usageError(u"There is no command \"%1\"."_s.arg(text(left.front())), advice);
}

} // namespace

CommandLine readCommandLine(const std::vector<std::string>& arguments)
{
    CommandLine line;
    CLI::App app(description, "fldc");
    app.footer(footer);
    app.require_subcommand(1);
    addGeneral(app, line.options);
    for (const Command& command : commands())
        declare(app, command, line.options);
    try {
        auto words = marked(arguments);
        std::ranges::reverse(words); // as it wants them
        app.parse(std::move(words));
        unmark(line.options);
        line.command = recognised(app);
    } catch (const CLI::CallForHelp&) {
        line.text = QString::fromStdString(app.help());
    } catch (const CLI::CallForAllHelp&) {
        line.text = QString::fromStdString(app.help("", CLI::AppFormatMode::All));
    } catch (const CLI::CallForVersion& version) {
        line.text = QString::fromUtf8(version.what()) + u'\n';
    } catch (const CLI::ParseError& error) {
        line.command = recognised(app);
        line.error = wrongUsage(app, line.command, error);
    }
    line.options.json = line.options.json || asksForJson(arguments);
    return line;
}

} // namespace fldc::cli
