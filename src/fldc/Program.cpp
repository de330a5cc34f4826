#include "fldc/Program.h"

#include "certificate/RunObjects.h"
#include "fldc/commands/Command.h"
#include "fldc/files/InputFiles.h"
#include "fldc/files/NamedPort.h"
#include "fldc/output/Messages.h"
#include "fldc/process/StandardDescriptors.h"
#include "platform/PlatformFailure.h"
#include "platform/ShowError.h"
#include "platform/qt/QtPlatform.h"
#include "platform/qt/SignalWatch.h"

#include <csignal>
#include <cstring>

namespace fldc::cli {

using namespace Qt::StringLiterals;

namespace {

Outcome unexpectedFailure()
{
    return failure(Exit::Unexpected, Code::RuntimeError,
                   u"Unexpected failure: "_s + currentFailure().description(),
                   u"Try again; if it happens again, report it with the --log file."_s);
}

QString signalText(int number)
{
    return u"Ended by %1."_s.arg(number == SIGINT    ? u"SIGINT"_s
                                 : number == SIGTERM ? u"SIGTERM"_s
                                                     : u"SIGHUP"_s);
}

} // namespace

Program::Program(const std::vector<std::string>& arguments)
    : m_line(readCommandLine(arguments)),
      m_output(m_line.options.json, [this] { m_outputLoss.lost(); })
{
}

int Program::run(HeldSignals& held)
{
    // A command that waits for a radio is given its end by wantsEnd() in the event loop.
    const SignalWatch signalWatch([] {});
    held.release();
    const int code = runWatched(signalWatch);
    held.hold(); // what comes now must not make another exit code of one that was told
    if (m_afterResult)
        m_afterResult();
    return code;
}

int Program::runWatched(const SignalWatch& signalWatch)
{
    if (!m_line.text.isEmpty()) {
        m_output.printAlways(m_line.text);
        return close(Exit::Done, signalWatch);
    }
    Outcome outcome;
    try {
        outcome = m_line.error ? *m_line.error : runCommand(signalWatch);
    } catch (...) {
        outcome = unexpectedFailure();
    }
    return end(outcome, signalWatch);
}

Outcome Program::runCommand(const SignalWatch& signalWatch)
{
    Messages messages(m_output);
    const ErrorBoxScope errorBox(messages);
    QtPlatform system(messages);
    InputFiles files(system.platform().files);
    const Platform& all = system.platform();
    Platform platform{all.events, all.timers,         all.clock,   files,       all.settings,
                      all.ports,  all.serialControls, all.program, all.messages};
    const auto wantsEnd = [&] { return signalWatch.received() != 0 || m_outputLoss.wantsCancel(); };

    NamedPort port;
    const PortUse use = m_line.command->port;
    const auto portFailure = use == PortUse::None
                                 ? std::nullopt
                                 : namePort(m_line.options, use == PortUse::Needed, port);
    files.read(m_line.options.files, wantsEnd);
    Context context{
        m_line.options,
        m_output,
        port,
        files,
        platform,
        m_outputLoss,
        wantsEnd,
        [&] { return signalWatch.received(); },
        tellStarted(port, files),
        m_beforeResult,
        m_afterResult,
        [&] { (void)m_output.finish(signalWatch.descriptor(), signalWatch.received() != 0); }};
    return portFailure ? *portFailure : explainPort(m_line.command->run(context), port);
}

QJsonObject Program::tellStarted(const NamedPort& port, const InputFiles& files)
{
    const QJsonObject started = startedObject(
        {commandName(), port.name, port.device, files.toJson(), ProgramInfo().version()});
    m_output.tell(kind::started, started);
    return started;
}

// What the outcome is worth in the end: a signal or a lost output may stand before it.
int Program::end(Outcome outcome, const SignalWatch& signalWatch)
{
    m_seconds = secondsBetween(m_start, std::chrono::steady_clock::now());
    if (const int signal = signalWatch.received(); signal != 0) {
        if (outcome.ok())
            outcome.advice = u"Start again."_s;
        outcome.exit = foremost(outcome.exit, exitOfSignal(signal));
        outcome.message = outcome.message.isEmpty() ? signalText(signal)
                                                    : signalText(signal) + u' ' + outcome.message;
    }
    if (m_outputLoss.isLost()) {
        if (outcome.ok())
            outcome.advice = u"Start again with an output that can be written."_s;
        outcome.exit = foremost(outcome.exit, Exit::OutputLost);
        outcome.message = u"Standard output can't be written: %1."_s.arg(
                              QString::fromLocal8Bit(std::strerror(m_output.error()))) +
                          (outcome.message.isEmpty() ? QString() : u' ' + outcome.message);
    }
    callBeforeResult(outcome);
    try {
        m_output.tellResult(resultObject(outcome), outcome);
    } catch (...) {
        outcome = unexpectedFailure();
        m_output.tellResult(resultObject(outcome), outcome);
    }
    return close(outcome.exit, signalWatch);
}

// The last texts, the result itself among them, may be what could not be written.
int Program::close(Exit exit, const SignalWatch& signalWatch)
{
    if (!m_output.finish(signalWatch.descriptor(), signalWatch.received() != 0))
        exit = foremost(exit, exitOfSignal(signalWatch.received()));
    if (m_outputLoss.isLost())
        exit = foremost(exit, Exit::OutputLost);
    return static_cast<int>(exit);
}

void Program::callBeforeResult(Outcome& outcome) const
{
    if (!m_beforeResult)
        return;
    try {
        m_beforeResult(resultObject(outcome));
    } catch (...) {
        outcome.exit = foremost(outcome.exit, Exit::Unexpected);
        outcome.message +=
            u" The certificate can't be written: "_s + currentFailure().description();
        if (outcome.advice.isEmpty())
            outcome.advice = u"Check the folder of the certificates."_s;
    }
}

QJsonObject Program::resultObject(const Outcome& outcome) const
{
    return fldc::resultObject(commandName(), outcome, m_seconds);
}

QString Program::commandName() const
{
    return m_line.command != nullptr ? QString::fromLatin1(m_line.command->name) : QString();
}

} // namespace fldc::cli
