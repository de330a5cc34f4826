#include "fldc/radio/RunRecord.h"

#include "fldc/output/JsonObject.h"
#include "fldc/output/Output.h"
#include "fldc/process/OutputLoss.h"
#include "protocol/UpgradeState.h"
#include "session/Names.h"
#include "shared/LastError.h"
#include "ui/logic/ConfigurationList.h"

#include <chrono>
#include <utility>

namespace fldc::cli {

using namespace Qt::StringLiterals;

namespace {

// Between two lines of progress, in milliseconds: at most ten a second.
constexpr qint64 progressInterval = 100;

// The component writes "\\" between folders.
QString nativePath(QString path)
{
    return path.replace(u'\\', u'/');
}

QJsonObject componentObject(const session::Component& component)
{
    return makeObject(kind::component, {{"product"_L1, validText(component.product)},
                                        {"status"_L1, component.status},
                                        {"status_text"_L1, StatusText(component.status)},
                                        {"network"_L1, component.network},
                                        {"device"_L1, component.device},
                                        {"erasable"_L1, component.erasable}});
}

} // namespace

RunRecord::RunRecord(Surroundings surroundings)
    : m_surroundings(std::move(surroundings)), m_output(m_surroundings.output)
{
    m_clock.start();
}

void RunRecord::onEvent(const session::Event& event) noexcept
{
    try {
        // The operations of a run count as one: what the first did to the radio stays done.
        if (!std::holds_alternative<session::OperationStarted>(event) || !m_anyOperation)
            m_radio = fold(m_radio, event);
        std::visit([this](const auto& each) { on(each); }, event);
        if (m_surroundings.wantsEnd())
            m_surroundings.endRun();
    } catch (...) {
        // What can't be told must not leave a radio half written: the operation goes on.
        m_incomplete = true;
    }
}

void RunRecord::on(const session::OperationStarted& /*event*/)
{
    m_anyOperation = true;
}

void RunRecord::on(const session::LineOpened& /*event*/) {}

void RunRecord::on(const session::StepTaken& event)
{
    using session::Outcome;
    using session::Step;
    m_anythingSent = true;
    if (event.outcome != Outcome::Sent)
        m_lastStepRefused = event.outcome == Outcome::Refused;
    if (event.step == Step::Erase) {
        if (event.outcome == Outcome::Sent)
            m_surroundings.outputLoss.eraseBegins();
        else
            m_mayHaveErased |= event.outcome != Outcome::Refused;
    }
    if (event.step == Step::Restart && event.outcome == Outcome::Done)
        m_output.tell(kind::restarted, makeObject(kind::restarted, {}));
}

void RunRecord::on(const session::PowerCycleRequired& event)
{
    m_output.tell(kind::powerCycleRequired,
                  makeObject(kind::powerCycleRequired, {{"f1_key"_L1, event.f1Key}}));
    m_output.terminal().note(powerCycleRequest(event.f1Key));
}

void RunRecord::on(const session::LoggedOn& event)
{
    const QJsonValue identifier =
        event.identifier ? QJsonValue(validText(*event.identifier)) : QJsonValue();
    m_output.tell(kind::radio, makeObject(kind::radio, {{"identifier"_L1, identifier},
                                                        {"needs_boot_application"_L1,
                                                         event.needsBootApplication}}));
}

void RunRecord::on(const session::BootApplicationSent& event)
{
    m_output.tell(kind::bootApplication,
                  makeObject(kind::bootApplication, {{"file"_L1, validText(nativePath(event.file))},
                                                     {"bytes"_L1, event.bytes}}));
}

void RunRecord::on(const session::SpeedAgreed& event)
{
    m_baud = static_cast<std::int32_t>(event.baud);
    m_output.tell(kind::speed, makeObject(kind::speed, {{"baud"_L1, m_baud}}));
}

void RunRecord::on(const session::ConfigurationsRead& event)
{
    m_components[static_cast<std::size_t>(event.when)] = event.components;
    QJsonArray components;
    for (const session::Component& each : event.components)
        components.append(componentObject(each));
    m_output.tell(kind::configuration,
                  makeObject(kind::configuration, {{"when"_L1, nameOf(event.when).toString()},
                                                   {"components"_L1, components}}));
}

void RunRecord::on(const session::TargetBegun& event)
{
    m_wireBytes += std::exchange(m_targetBytes, 0);
    m_targets.push_back(
        {m_surroundings.fileOfImage.value(event.name), event.tag, event.place, false});
    m_rate = {};
    m_rate.add(std::chrono::milliseconds(m_clock.elapsed()), 0);
    m_lastShown.reset();
    const auto number = [&](std::int32_t session::Place::*which) {
        return event.place ? QJsonValue((*event.place).*which) : QJsonValue();
    };
    m_output.tell(kind::target,
                  makeObject(kind::target, {{"file"_L1, m_targets.back().file},
                                            {"tag"_L1, validText(event.tag)},
                                            {"network"_L1, number(&session::Place::network)},
                                            {"device"_L1, number(&session::Place::device)}}));
}

void RunRecord::on(const session::BlocksDone& event)
{
    if (event.action == session::BlockAction::Locked) {
        ++m_locks;
        if (!m_targets.empty())
            m_targets.back().locked = true;
    }
    QJsonArray blocks;
    for (const std::uint16_t block : event.blocks)
        blocks.append(block);
    m_output.tell(kind::blocks,
                  makeObject(kind::blocks, {{"action"_L1, nameOf(event.action).toString()},
                                            {"blocks"_L1, blocks}}));
}

void RunRecord::on(const session::TableBegun& event)
{
    m_output.tell(kind::table,
                  makeObject(kind::table, {{"address"_L1, static_cast<qint64>(event.address)},
                                           {"bytes"_L1, event.bytes},
                                           {"wire_bytes"_L1, event.wireBytes},
                                           {"compressed"_L1, event.compressed}}));
}

void RunRecord::on(const session::DataProgress& event)
{
    const std::chrono::milliseconds now(m_clock.elapsed());
    m_targetBytes = event.bytes;
    m_rate.add(now, event.bytes);
    const bool last = event.bytes >= event.total;
    if (!last && m_lastShown && now.count() - *m_lastShown < progressInterval)
        return;
    m_lastShown = now.count();
    Progress progress;
    progress.file = m_targets.empty() ? QString() : m_targets.back().tag;
    progress.percent = last ? 100 : static_cast<std::int32_t>(100 * event.bytes / event.total);
    progress.bytesPerSecond = m_rate.bytesPerSecond(now);
    progress.secondsLeft = last ? std::optional(0.0) : m_rate.secondsLeft(now, event.total);
    progress.baud = m_baud;
    const QJsonValue left = progress.secondsLeft ? QJsonValue(*progress.secondsLeft) : QJsonValue();
    m_output.tell(
        kind::progress,
        makeObject(kind::progress, {{"file"_L1, m_targets.empty() ? 0 : m_targets.back().file},
                                    {"tag"_L1, validText(progress.file)},
                                    {"percent"_L1, progress.percent},
                                    {"bytes"_L1, static_cast<qint64>(event.bytes)},
                                    {"total"_L1, static_cast<qint64>(event.total)},
                                    {"bytes_per_second"_L1, progress.bytesPerSecond},
                                    {"seconds_left"_L1, left}}));
    m_output.terminal().show(progress);
}

void RunRecord::on(const session::TargetWritten& /*event*/)
{
    m_wireBytes += std::exchange(m_targetBytes, 0);
}

void RunRecord::on(const session::CommandRepeated& event)
{
    ++m_retries;
    m_output.tell(
        kind::retry,
        makeObject(kind::retry, {{"command"_L1, event.name},
                                 {"attempt"_L1, event.attempt},
                                 {"reason"_L1, formatMessage(static_cast<int>(event.reason))}}));
}

void RunRecord::on(const session::UnexpectedBytes& event)
{
    m_output.tell(kind::unexpected,
                  makeObject(kind::unexpected,
                             {{"hex"_L1, QString::fromLatin1(event.bytes.toHex().toUpper())},
                              {"looks_like"_L1, nameOf(event.looksLike).toString()},
                              {"text"_L1, printable(QString::fromLatin1(event.bytes))}}));
}

void RunRecord::on(const session::LinkMeasured& event)
{
    m_links.push_back(event);
    m_output.tell(kind::link, linkObject(event));
}

void RunRecord::on(const session::OperationEnded& event)
{
    m_ending = {static_cast<Code>(event.code), event.text};
}

} // namespace fldc::cli
