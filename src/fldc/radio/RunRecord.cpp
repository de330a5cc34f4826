#include "fldc/radio/RunRecord.h"

#include "fldc/output/JsonObject.h"
#include "fldc/output/Output.h"
#include "fldc/process/OutputLoss.h"
#include "protocol/UpgradeState.h"

#include <chrono>
#include <utility>

namespace fldc::cli {

RunRecord::RunRecord(Surroundings surroundings)
    : m_surroundings(std::move(surroundings)), m_output(m_surroundings.output),
      m_narrator([this](const session::TargetBegun& begun) {
          return m_surroundings.fileOfImage.value(begun.name);
      })
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
        tell(event);
        if (m_surroundings.wantsEnd())
            m_surroundings.endRun();
    } catch (...) {
        // What can't be told must not leave a radio half written: the operation goes on.
        m_incomplete = true;
    }
}

void RunRecord::tell(const session::Event& event)
{
    const auto told = m_narrator.tell(event, std::chrono::milliseconds(m_clock.elapsed()));
    if (!told)
        return;
    const ObjectKind& kind = kindNamed(told->kind);
    m_output.tell(kind, makeObject(kind, told->fields));
    if (std::holds_alternative<session::DataProgress>(event))
        showProgress();
    else if (const auto* required = std::get_if<session::PowerCycleRequired>(&event))
        m_output.terminal().note(powerCycleRequest(required->f1Key));
}

void RunRecord::showProgress()
{
    const session::Transfer& transfer = m_narrator.transfer();
    m_output.terminal().show({transfer.tag, static_cast<std::int32_t>(transfer.percent()),
                              transfer.bytesPerSecond, transfer.secondsLeft, m_baud});
}

void RunRecord::on(const session::OperationStarted& /*event*/)
{
    m_anyOperation = true;
}

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
}

void RunRecord::on(const session::SpeedAgreed& event)
{
    m_baud = static_cast<std::int32_t>(event.baud);
}

void RunRecord::on(const session::ConfigurationsRead& event)
{
    m_components[static_cast<std::size_t>(event.when)] = event.components;
}

void RunRecord::on(const session::TargetBegun& event)
{
    m_wireBytes += std::exchange(m_targetBytes, 0);
    m_targets.push_back(
        {m_surroundings.fileOfImage.value(event.name), event.tag, event.place, false});
}

void RunRecord::on(const session::BlocksDone& event)
{
    if (event.action != session::BlockAction::Locked)
        return;
    ++m_locks;
    if (!m_targets.empty())
        m_targets.back().locked = true;
}

void RunRecord::on(const session::DataProgress& event)
{
    m_targetBytes = event.bytes;
}

void RunRecord::on(const session::TargetWritten& /*event*/)
{
    m_wireBytes += std::exchange(m_targetBytes, 0);
}

void RunRecord::on(const session::CommandRepeated& /*event*/)
{
    ++m_retries;
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
