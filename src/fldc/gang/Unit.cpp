#include "fldc/gang/Unit.h"

#include "certificate/ObjectKinds.h"

#include <QCoreApplication>
#include <QJsonDocument>

#include <algorithm>
#include <array>
#include <utility>

namespace fldc::cli {

using namespace Qt::StringLiterals;

namespace {

/// What a person reads while a unit is at work, by what its process told last.
struct StepText {
    ObjectKind kind;
    QStringView detail; ///< of a key "action" or "when"; empty for any
    QStringView text;
};

constexpr std::array stepTexts{
    StepText{kind::started, u"", u"logging on"},
    StepText{kind::powerCycleRequired, u"", u"SWITCH IT OFF AND ON"},
    StepText{kind::radio, u"", u"logged on"},
    StepText{kind::bootApplication, u"", u"boot application sent"},
    StepText{kind::speed, u"", u"speed agreed"},
    StepText{kind::configuration, u"before", u"configurations read"},
    StepText{kind::configuration, u"after", u"checking"},
    StepText{kind::target, u"", u"unlocking"},
    StepText{kind::blocks, u"unlocked", u"erasing"},
    StepText{kind::blocks, u"erased", u"writing"},
    StepText{kind::blocks, u"locked", u"locked"},
    StepText{kind::progress, u"", u"writing"},
    StepText{kind::restarted, u"", u"restarted"},
};

QString programPath()
{
    return QCoreApplication::applicationFilePath();
}

} // namespace

Unit::Unit(NamedPort port, Surroundings surroundings)
    : m_port(std::move(port)), m_surroundings(std::move(surroundings))
{
}

void Unit::start(const QStringList& arguments, const QString& label)
{
    m_label = label;
    m_progress = {u"starting"_s, 0, 0, {}};
    m_next.clear();
    m_result.reset();
    m_mayHaveErased = false;
    m_isLeft = false;
    m_hasStarted = false;
    m_hasLoggedOn = false;
    m_process =
        std::make_shared<ChildProcess>([this](const QByteArray& line) { take(line); },
                                       [this](const ChildProcess::Ended& ended) { end(ended); });
    m_process->start(programPath(), QStringList{u"--json"_s} + arguments);
}

void Unit::askToEnd(int signal)
{
    if (m_process)
        m_process->askToEnd(signal);
}

void Unit::leave()
{
    if (!m_process)
        return;
    m_process->stopReading();
    m_isLeft = true;
    m_progress.step = u"not heard any more; ends by itself"_s;
}

void Unit::take(const QByteArray& line)
{
    QJsonObject object = QJsonDocument::fromJson(line).object();
    const QString type = object.take("type"_L1).toString();
    object.remove("time"_L1);
    if (type.isEmpty())
        return;
    follow(type, object);
    object.insert("port"_L1, m_port.name);
    m_surroundings.told(type, object);
}

void Unit::follow(const QString& type, const QJsonObject& object)
{
    const QString detail = object[type == "blocks"_L1 ? "action"_L1 : "when"_L1].toString();
    const auto* step = std::ranges::find_if(stepTexts, [&](const StepText& each) {
        return each.kind.name == type && (each.detail.isEmpty() || each.detail == detail);
    });
    if (step != stepTexts.end())
        m_progress.step = step->text.toString();
    m_hasStarted = m_hasStarted || type == kind::started.name;
    m_hasLoggedOn = m_hasLoggedOn || type == kind::radio.name;
    m_mayHaveErased = m_mayHaveErased || type == kind::blocks.name;
    if (type == kind::progress.name) {
        const QJsonValue left = object["seconds_left"_L1];
        m_progress.step += u' ' + object["tag"_L1].toString();
        m_progress.percent = object["percent"_L1].toInt();
        m_progress.bytesPerSecond = object["bytes_per_second"_L1].toDouble();
        m_progress.secondsLeft = left.isDouble() ? std::optional(left.toDouble()) : std::nullopt;
    }
    if (type == kind::result.name)
        m_result = UnitResult{static_cast<Exit>(object["exit"_L1].toInt()),
                              object["code"_L1].toInt(), object["message"_L1].toString(),
                              object["advice"_L1].toString(), object["radio"_L1].toString()};
}

void Unit::end(const ChildProcess::Ended& ended)
{
    if (!m_result) {
        m_result = resultWithout(ended);
        m_surroundings.told(kind::result.name, {{"port"_L1, m_port.name},
                                                {"command"_L1, u"download"_s},
                                                {"ok"_L1, false},
                                                {"exit"_L1, static_cast<int>(m_result->exit)},
                                                {"code"_L1, m_result->code},
                                                {"message"_L1, m_result->message},
                                                {"advice"_L1, m_result->advice},
                                                {"radio"_L1, m_result->radio},
                                                {"seconds"_L1, 0}});
    }
    // This call comes from the process: it goes when the call is done.
    const auto process = std::exchange(m_process, nullptr);
    QMetaObject::invokeMethod(
        QCoreApplication::instance(), [process] {}, Qt::QueuedConnection);
    m_surroundings.ended(*this);
}

// It was killed, has crashed, or was left: what nobody has said is taken for the worse.
UnitResult Unit::resultWithout(const ChildProcess::Ended& ended) const
{
    if (m_isLeft && !ended.crashed)
        return {static_cast<Exit>(ended.exitCode), 0, u"Nobody heard the end of this unit."_s,
                u"Its certificate and the history say what became of it."_s, u"reset"_s};
    const QString how = ended.failure.isEmpty() ? u"it was killed or has crashed"_s : ended.failure;
    UnitResult result{Exit::Unexpected, static_cast<int>(Code::RuntimeError),
                      u"The process of this unit ended without a result: "_s + how + u'.',
                      u"Switch the radio off and on, then download again."_s, u"reset"_s};
    if (m_mayHaveErased) {
        result.exit = Exit::Incomplete;
        result.advice = u"Download again before the radio is used."_s;
        result.radio = u"partly-written"_s;
    } else if (!m_hasStarted) {
        result.advice = u"Start it again."_s;
        result.radio = u"untouched"_s;
    } else if (m_hasLoggedOn) {
        result.radio = u"upgrade-mode"_s;
    }
    return result;
}

} // namespace fldc::cli
