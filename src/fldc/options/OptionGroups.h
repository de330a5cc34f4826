#pragma once

namespace CLI {
class App;
}

namespace fldc::cli {

struct Options;

/// Adds options or arguments to a command; they are read into the Options, which must outlive the
/// App.
using OptionGroup = void (*)(CLI::App& command, Options& options);

void addPort(CLI::App& command, Options& options);          ///< PORT
void addPortOrDefault(CLI::App& command, Options& options); ///< [PORT]
void addPortOption(CLI::App& command, Options& options);    ///< --port PORT
void addFiles(CLI::App& command, Options& options);         ///< FILE...
void addOneFile(CLI::App& command, Options& options);       ///< FILE
void addExpectation(CLI::App& command, Options& options);   ///< --expect FILE
void addComponents(CLI::App& command, Options& options);    ///< COMPONENT...
void addLogOn(CLI::App& command, Options& options);         ///< of every command that logs on
void addDownload(CLI::App& command, Options& options);
void addGang(CLI::App& command, Options& options);   ///< --port P..., --all, --repeat
void addRounds(CLI::App& command, Options& options); ///< --rounds N
void addCompression(CLI::App& command, Options& options);
void addStore(CLI::App& command, Options& options);   ///< --store
void addHistory(CLI::App& command, Options& options); ///< ACTION and what it asks for
/// --json, --log and --version, which stand before or behind the command.
void addGeneral(CLI::App& command, Options& options);

} // namespace fldc::cli
