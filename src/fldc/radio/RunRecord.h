#pragma once

#include "certificate/RunFacts.h"
#include "session/Events.h"
#include "session/Listener.h"
#include "session/Narrator.h"

#include <QElapsedTimer>
#include <QHash>
#include <QString>

#include <functional>

namespace fldc::cli {

class Output;
class OutputLoss;

/// Listens to a run: tells each event as it comes, to people and to programs, and keeps what the
/// result is made from. Outlives the operations that it listens to.
class RunRecord final : public session::IListener {
public:
    /// @p fileOfImage: number of the file that an image (by its name) was read from. @p endRun is
    /// called behind an event when the run is to end (@p wantsEnd); it must not throw.
    struct Surroundings {
        Output& output;
        OutputLoss& outputLoss;
        QHash<QString, std::int32_t> fileOfImage;
        std::function<bool()> wantsEnd;
        std::function<void()> endRun;
    };
    explicit RunRecord(Surroundings surroundings);

    void onEvent(const session::Event& event) noexcept override;

    [[nodiscard]] const RunFacts& facts() const { return m_facts; }

private:
    void watchErase(const session::Event& event);
    void tell(const session::Event& event);
    void showProgress();

    Surroundings m_surroundings;
    Output& m_output;
    RunFacts m_facts;
    session::Narrator m_narrator;
    QElapsedTimer m_clock;
};

} // namespace fldc::cli
