#include "fldc/gang/Gang.h"

#include "certificate/Outcome.h"
#include "fldc/commands/Command.h"
#include "fldc/options/Options.h"
#include "fldc/output/Output.h"
#include "fldc/process/OutputLoss.h"
#include "platform/IEvents.h"
#include "platform/ITimers.h"
#include "platform/Platform.h"
#include "shared/NumberText.h"

#include <QCoreApplication>
#include <QFile>
#include <QJsonDocument>

#include <algorithm>
#include <chrono>
#include <csignal>

namespace fldc::cli {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto boardInterval = 200ms;
constexpr auto lookInterval = 3s;

QString textOf(const std::string& bytes)
{
    return QFile::decodeName(QByteArray::fromStdString(bytes));
}

void append(QStringList& arguments, const char* option, const std::optional<std::string>& value)
{
    if (value)
        arguments += {QString::fromLatin1(option), textOf(*value)};
}

// No radio, or no device of its line. A fault of one that answers is none, nor is a port in use.
bool isSilence(const ChildProcess::Ended& outcome, const QString& device)
{
    const auto is = [&](Exit exit) { return outcome.exitCode == static_cast<int>(exit); };
    return !outcome.crashed &&
           (is(Exit::NoConversation) || (is(Exit::Port) && !QFile::exists(device)));
}

} // namespace

Gang::Gang(Context& context, std::vector<NamedPort> ports)
    : m_context(context), m_places(ports.size())
{
    for (NamedPort& port : ports)
        m_units.push_back(std::make_unique<Unit>(
            std::move(port),
            Unit::Surroundings{
                [this](const QString& type, const QJsonObject& object) { tell(type, object); },
                [this](Unit& unit) { ended(unit); }}));
}

Gang::~Gang()
{
    m_context.platform.timers.stop(m_boardTimer);
    m_context.platform.timers.stop(m_lookTimer);
}

Outcome Gang::run()
{
    if (m_context.options.promptUnit)
        m_input = std::make_unique<StandardInput>(
            [this](const std::optional<QString>& label) { takeLabel(label); });
    if (!m_context.output.isJson())
        m_boardTimer = m_context.platform.timers.start(boardInterval, [this] { showBoard(); });
    if (m_context.options.repeat)
        m_lookTimer = m_context.platform.timers.start(lookInterval, [this] { look(); });
    while (!isDone()) {
        endWhatIsToEnd();
        startWhatIsDue();
        if (!isDone())
            m_context.platform.events.waitForEvents();
    }
    return outcome();
}

void Gang::startWhatIsDue()
{
    for (std::size_t i = 0; i < m_units.size(); ++i) {
        if (m_places[i].isDue && !startsNoMore())
            start(i);
    }
}

// Radios that are being written are completed when nobody hears of it any more; no other follows.
bool Gang::startsNoMore() const
{
    return m_isEnding || m_context.outputLoss.isLost();
}

void Gang::start(std::size_t index)
{
    const auto label = nextLabel();
    if (!label)
        return;
    m_places[index].isDue = false;
    m_places[index].isEmpty = false;
    Unit& unit = *m_units[index];
    unit.start(argumentsOf(unit.port().name, *label), *label);
}

// Nothing while the label is still to be read.
std::optional<QString> Gang::nextLabel()
{
    if (!m_context.options.promptUnit)
        return textOf(m_context.options.unit);
    if (m_labels.empty()) {
        if (!std::exchange(m_hasPrompted, true))
            m_context.output.terminal().note(u"Read the label of the next unit."_s);
        return std::nullopt;
    }
    const QString label = m_labels.front();
    m_labels.pop_front();
    m_hasPrompted = false;
    return label;
}

void Gang::takeLabel(const std::optional<QString>& label)
{
    if (!label)
        m_noMoreLabels = true;
    else if (!label->isEmpty())
        m_labels.push_back(*label);
}

QStringList Gang::argumentsOf(const QString& port, const QString& label) const
{
    const Options& options = m_context.options;
    QStringList arguments{u"download"_s, u"--speed"_s, textOf(options.speed)};
    append(arguments, "--compression", options.compression);
    append(arguments, "--boot-files", options.bootFiles);
    append(arguments, "--certificate", options.certificate);
    append(arguments, "--store", options.store);
    if (options.powerCycleWait)
        arguments += {u"--power-cycle-wait"_s, QString::number(*options.powerCycleWait)};
    if (options.log)
        arguments += {u"--log"_s, textOf(*options.log) + u'-' + port.section(u'/', -1)};
    if (options.specialLogOn)
        arguments += u"--special-log-on"_s;
    if (options.allowFpga)
        arguments += u"--allow-fpga"_s;
    if (!options.job.empty())
        arguments += u"--job="_s + textOf(options.job);
    if (!label.isEmpty())
        arguments += u"--unit="_s + label;
    arguments += {u"--"_s, port};
    for (const std::string& file : options.files)
        arguments += textOf(file);
    return arguments;
}

void Gang::tell(const QString& type, const QJsonObject& object)
{
    const bool isResult = type == kind::result.name;
    m_context.output.tell(isResult ? kind::unitResult : kindNamed(type), object);
}

void Gang::ended(Unit& unit)
{
    if (m_context.options.repeat)
        unit.setNext(u"UNPLUG IT"_s); // until its line has been silent, what answers is itself
    const UnitResult& result = *unit.result();
    ++(result.passed()                   ? m_counts.passed
       : result.exit == Exit::OutputLost ? m_counts.unheard
                                         : m_counts.failed);
    if (!m_foremost || foremost(m_foremost->exit, result.exit) != m_foremost->exit) {
        m_foremost = result;
        m_foremostPort = unit.port().name;
    }
    m_context.output.print(resultLine(unit).text + u'\n');
    showBoard();
}

// With --repeat: whether the radios that are done are still there.
void Gang::look()
{
    m_context.output.checkReader();
    for (std::size_t i = 0; i < m_units.size() && !startsNoMore(); ++i) {
        const Place& place = m_places[i];
        if (!m_units[i]->isRunning() && !place.isDue && !place.probe)
            probe(i);
    }
}

void Gang::probe(std::size_t index)
{
    QStringList arguments{u"--json"_s, u"report"_s, u"--power-cycle-wait"_s, u"0"_s};
    append(arguments, "--boot-files", m_context.options.bootFiles);
    arguments += {u"--"_s, m_units[index]->port().name};
    m_places[index].hasAnswered = false;
    m_places[index].probe = std::make_unique<ChildProcess>(
        [this, index](const QByteArray& line) {
            const QString type = QJsonDocument::fromJson(line)["type"_L1].toString();
            m_places[index].hasAnswered |=
                type == kind::radio.name || type == kind::unexpected.name;
        },
        [this, index](const ChildProcess::Ended& outcome) { probed(index, outcome); });
    m_places[index].probe->start(QCoreApplication::applicationFilePath(), arguments);
}

void Gang::probed(std::size_t index, const ChildProcess::Ended& outcome)
{
    Place& place = m_places[index];
    // This call comes from the process: it goes when the call is done.
    std::shared_ptr<ChildProcess> done(std::move(place.probe));
    QMetaObject::invokeMethod(
        QCoreApplication::instance(), [done] {}, Qt::QueuedConnection);
    const bool isGood = !outcome.crashed && outcome.exitCode == static_cast<int>(Exit::Done);
    place.isDue = isGood && place.isEmpty;
    place.isEmpty = isSilence(outcome, m_units[index]->port().device) && !place.hasAnswered;
    if (place.isDue)
        m_units[index]->setNext(m_context.options.promptUnit ? u"READ ITS LABEL"_s : QString());
    else
        m_units[index]->setNext(place.isEmpty ? u"plug in the next"_s : u"UNPLUG IT"_s);
}

void Gang::showBoard()
{
    if (!m_context.output.isJson())
        m_context.output.terminal().showBoard(
            boardOf(m_units, m_counts, m_context.output.terminal().boardRows()));
}

void Gang::endWhatIsToEnd()
{
    const int signal = m_context.signal();
    if (signal != 0 && !std::exchange(m_isEnding, true)) {
        // Each ends in order and tells its result.
        for (const auto& unit : m_units)
            unit->askToEnd(signal);
        endProbes(signal);
    }
    if (m_context.outputLoss.isLost() && !std::exchange(m_isLeft, true)) {
        for (const auto& unit : m_units)
            unit->leave();
        endProbes(SIGTERM);
    }
}

void Gang::endProbes(int signal)
{
    for (const Place& place : m_places) {
        if (place.probe)
            place.probe->askToEnd(signal);
    }
}

bool Gang::isDone() const
{
    const bool anyRuns =
        std::ranges::any_of(m_units, [](const auto& unit) { return unit->isRunning(); }) ||
        std::ranges::any_of(m_places, [](const Place& place) { return place.probe != nullptr; });
    if (anyRuns || startsNoMore())
        return !anyRuns;
    const bool noLabel = m_noMoreLabels && m_labels.empty();
    const bool anyDue = std::ranges::any_of(m_places, &Place::isDue) && !noLabel;
    return !anyDue && (!m_context.options.repeat || noLabel);
}

Outcome Gang::outcome() const
{
    Outcome outcome;
    outcome.message =
        u"%1 passed, %2 failed."_s.arg(counted(m_counts.passed, u"unit")).arg(m_counts.failed);
    if (m_counts.unheard > 0)
        outcome.message += u" Of %1 nobody heard the end."_s.arg(m_counts.unheard);
    const auto missing = std::ranges::count_if(m_places, &Place::isDue);
    if (m_foremost) {
        outcome.exit = m_foremost->exit;
        outcome.code = static_cast<Code>(m_foremost->code);
        outcome.radio = m_foremost->radio;
        if (!m_foremost->passed())
            outcome.advice = m_foremostPort + u": "_s + m_foremost->advice;
    }
    if (missing > 0 && !startsNoMore()) {
        outcome.message += u" Not started, for want of a label: %1."_s.arg(missing);
        outcome.exit = foremost(outcome.exit, Exit::NothingToDo);
    }
    return outcome;
}

} // namespace fldc::cli
