#pragma once

#include "fldc/options/CommandLine.h"
#include "fldc/output/Output.h"
#include "fldc/process/OutputLoss.h"

#include <QJsonObject>

#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace fldc {
class SignalWatch;
}

namespace fldc::cli {

class HeldSignals;
class InputFiles;

/// One run of the program, after the QCoreApplication was made: reads the command line, runs the
/// command, tells the result. Exactly one result is told, whatever happens in between.
class Program {
public:
    /// @p arguments: those behind the program's name.
    explicit Program(const std::vector<std::string>& arguments);

    /// Runs and returns the exit code. @p held: signals are taken from here on.
    [[nodiscard]] int run(HeldSignals& held);

private:
    [[nodiscard]] int runWatched(const SignalWatch& signalWatch);
    [[nodiscard]] Outcome runCommand(const SignalWatch& signalWatch);
    [[nodiscard]] QJsonObject tellStarted(const struct NamedPort& port,
                                          const class InputFiles& files);
    void callBeforeResult(Outcome& outcome) const;
    [[nodiscard]] int end(Outcome outcome, const SignalWatch& signalWatch);
    [[nodiscard]] int close(Exit exit, const SignalWatch& signalWatch);
    [[nodiscard]] QJsonObject resultObject(const Outcome& outcome) const;
    [[nodiscard]] QString commandName() const;

    std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
    double m_seconds = 0; ///< that the whole run took, once it has ended
    CommandLine m_line;
    OutputLoss m_outputLoss;
    Output m_output;
    std::function<void(const QJsonObject& result)> m_beforeResult; ///< may be empty
    std::function<void()> m_afterResult;                           ///< likewise
};

} // namespace fldc::cli
