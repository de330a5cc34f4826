#include "fldc/Program.h"

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

QString versionText()
{
    const ProgramVersion version = ProgramInfo().version();
    return u"%1.%2.%3"_s.arg(version.major).arg(version.minor).arg(version.revision);
}

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

// To the millisecond.
double secondsSince(std::chrono::steady_clock::time_point start)
{
    const auto passed = std::chrono::steady_clock::now() - start;
    return static_cast<double>(
               std::chrono::duration_cast<std::chrono::milliseconds>(passed).count()) /
           1000;
}

QString adviceOf(const Outcome& outcome)
{
    return outcome.advice.isEmpty() ? u"Nothing is left to do."_s : outcome.advice;
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
    return portFailure ? *portFailure : m_line.command->run(context);
}

QJsonObject Program::tellStarted(const NamedPort& port, const InputFiles& files)
{
    const auto text = [](const QString& value) {
        return value.isEmpty() ? QJsonValue() : QJsonValue(validText(value));
    };
    const QJsonObject started = makeObject(kind::started, {{"schema"_L1, schema},
                                                           {"command"_L1, commandName()},
                                                           {"port"_L1, text(port.name)},
                                                           {"device"_L1, text(port.device)},
                                                           {"files"_L1, files.toJson()},
                                                           {"version"_L1, versionText()}});
    m_output.tell(kind::started, started);
    return started;
}

// What the outcome is worth in the end: a signal or a lost output may stand before it.
int Program::end(Outcome outcome, const SignalWatch& signalWatch)
{
    m_seconds = secondsSince(m_start);
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
    QJsonObject object = makeObject(kind::result, {{"command"_L1, commandName()},
                                                   {"ok"_L1, outcome.ok()},
                                                   {"exit"_L1, static_cast<int>(outcome.exit)},
                                                   {"code"_L1, static_cast<int>(outcome.code)},
                                                   {"message"_L1, outcome.message},
                                                   {"advice"_L1, adviceOf(outcome)},
                                                   {"radio"_L1, outcome.radio},
                                                   {"seconds"_L1, m_seconds}});
    if (const auto& download = outcome.download)
        object = extended(object, kind::result,
                          {{"written"_L1, jsonTexts(download->written)},
                           {"not_matched"_L1, jsonTexts(download->notMatched)},
                           {"confirmed"_L1, jsonTexts(download->confirmed)},
                           {"baud"_L1, download->baud},
                           {"retries"_L1, download->retries},
                           {"wire_bytes"_L1, qint64{download->wireBytes}}});
    if (const auto& best = outcome.best)
        object =
            extended(object, kind::result,
                     {{"best"_L1, *best ? QJsonValue(static_cast<qint64>(**best)) : QJsonValue()}});
    return object;
}

QString Program::commandName() const
{
    return m_line.command != nullptr ? QString::fromLatin1(m_line.command->name) : QString();
}

} // namespace fldc::cli
