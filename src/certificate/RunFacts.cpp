#include "certificate/RunFacts.h"

#include <utility>

namespace fldc {

RunFacts::RunFacts(std::function<std::int32_t(const session::TargetBegun&)> fileOf)
    : m_fileOf(std::move(fileOf))
{
}

void RunFacts::follow(const session::Event& event)
{
    // What the first operation did to the radio stays done.
    if (!std::holds_alternative<session::OperationStarted>(event) || !m_anyOperation)
        m_radio = fold(m_radio, event);
    std::visit([this](const auto& each) { on(each); }, event);
}

void RunFacts::on(const session::OperationStarted& /*event*/)
{
    m_anyOperation = true;
}

void RunFacts::on(const session::StepTaken& event)
{
    using session::Outcome;
    m_anythingSent = true;
    if (event.outcome == Outcome::Sent)
        return;
    m_lastStepRefused = event.outcome == Outcome::Refused;
    m_mayHaveErased |= event.step == session::Step::Erase && event.outcome != Outcome::Refused;
}

void RunFacts::on(const session::SpeedAgreed& event)
{
    m_baud = static_cast<std::int32_t>(event.baud);
}

void RunFacts::on(const session::ConfigurationsRead& event)
{
    m_components[static_cast<std::size_t>(event.when)] = event.components;
}

void RunFacts::on(const session::ErasureChosen& event)
{
    m_chosen = event.components;
}

void RunFacts::on(const session::TargetBegun& event)
{
    m_wireBytes += std::exchange(m_targetBytes, 0);
    m_targets.push_back({m_fileOf(event), event.tag, event.place, false});
}

void RunFacts::on(const session::BlocksDone& event)
{
    if (event.action != session::BlockAction::Locked)
        return;
    ++m_locks;
    if (!m_targets.empty())
        m_targets.back().locked = true;
}

void RunFacts::on(const session::DataProgress& event)
{
    m_targetBytes = event.bytes;
}

void RunFacts::on(const session::TargetWritten& /*event*/)
{
    m_wireBytes += std::exchange(m_targetBytes, 0);
}

void RunFacts::on(const session::CommandRepeated& /*event*/)
{
    ++m_retries;
}

void RunFacts::on(const session::LinkMeasured& event)
{
    m_links.push_back(event);
}

void RunFacts::on(const session::OperationEnded& event)
{
    m_ending = {static_cast<Code>(event.code), event.text};
}

} // namespace fldc
