#include "fldc/radio/RunRecord.h"

#include "certificate/JsonObject.h"
#include "fldc/output/Output.h"
#include "fldc/process/OutputLoss.h"
#include "protocol/UpgradeState.h"

#include <chrono>
#include <utility>

namespace fldc::cli {

RunRecord::RunRecord(Surroundings surroundings)
    : m_surroundings(std::move(surroundings)), m_output(m_surroundings.output),
      m_facts([this](const session::TargetBegun& begun) {
          return m_surroundings.fileOfImage.value(begun.name);
      }),
      m_narrator([this](const session::TargetBegun& begun) {
          return m_surroundings.fileOfImage.value(begun.name);
      })
{
    m_clock.start();
}

void RunRecord::onEvent(const session::Event& event) noexcept
{
    try {
        m_facts.follow(event);
        watchErase(event);
        tell(event);
        if (m_surroundings.wantsEnd())
            m_surroundings.endRun();
    } catch (...) {
        // What can't be told must not leave a radio half written: the operation goes on.
        m_facts.markIncomplete();
    }
}

void RunRecord::watchErase(const session::Event& event)
{
    const auto* step = std::get_if<session::StepTaken>(&event);
    if (step != nullptr && step->step == session::Step::Erase &&
        step->outcome == session::Outcome::Sent)
        m_surroundings.outputLoss.eraseBegins();
}

void RunRecord::tell(const session::Event& event)
{
    if (const auto* link = std::get_if<session::LinkMeasured>(&event))
        m_output.tell(kind::link, linkObject(*link));
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
                              transfer.bytesPerSecond, transfer.secondsLeft, m_facts.baud()});
}

} // namespace fldc::cli
