#pragma once

#include "certificate/LinkView.h"
#include "session/Events.h"
#include "session/RadioState.h"

#include <QString>

#include <array>
#include <functional>
#include <optional>
#include <vector>

namespace fldc {

/// What happened to one place of a radio that an image was written to.
struct WrittenTarget {
    std::int32_t file = 0; ///< from 1, in the order in which the files were named
    QString tag;
    std::optional<session::Place> place; ///< none for an image without targets
    bool locked = false;
};

/// How an operation of the manager ended.
struct Ending {
    Code code = Code::Success; ///< 37 included
    QString message;           ///< of the code
};

/// What is known of a run from its events so far: its verdict is made from this. All operations
/// that are followed count as one run.
class RunFacts {
public:
    /// @p fileOf: number of the file, from 1, that the image of a target was read from.
    explicit RunFacts(std::function<std::int32_t(const session::TargetBegun&)> fileOf);

    void follow(const session::Event& event);
    /// An event could not be told or kept; a fault of the program.
    void markIncomplete() { m_incomplete = true; }

    [[nodiscard]] session::State state() const { return stateOf(m_radio); }
    [[nodiscard]] const std::vector<WrittenTarget>& targets() const { return m_targets; }
    /// Components as they were read before, after, or by a report; nothing when they were not.
    [[nodiscard]] const std::optional<std::vector<session::Component>>&
    components(session::Reading when) const
    {
        return m_components[static_cast<std::size_t>(when)];
    }
    /// What an erasure was asked to erase.
    [[nodiscard]] const std::vector<session::Component>& chosen() const { return m_chosen; }
    [[nodiscard]] bool anythingSent() const { return m_anythingSent; }
    /// Flash was erased, or may have been.
    [[nodiscard]] bool mayHaveErased() const { return m_mayHaveErased; }
    [[nodiscard]] bool isIncomplete() const { return m_incomplete; }
    /// Times that the radio has locked blocks.
    [[nodiscard]] std::size_t locks() const { return m_locks; }
    /// The last step that was sent was answered with a plain fault word.
    [[nodiscard]] bool lastStepRefused() const { return m_lastStepRefused; }
    /// Of the last operation: an erasure's own failure, not that of reading again.
    [[nodiscard]] const Ending& ending() const { return m_ending; }
    /// Speeds of the line that were measured, in their order.
    [[nodiscard]] const LinkSpeeds& links() const { return m_links; }
    [[nodiscard]] std::int32_t baud() const { return m_baud; }
    [[nodiscard]] std::int32_t retries() const { return m_retries; }
    [[nodiscard]] std::int64_t wireBytes() const { return m_wireBytes + m_targetBytes; }

private:
    /// Events that nothing is kept of.
    template <class Event>
    void on(const Event& /*event*/)
    {
    }
    void on(const session::OperationStarted& event);
    void on(const session::StepTaken& event);
    void on(const session::SpeedAgreed& event);
    void on(const session::ConfigurationsRead& event);
    void on(const session::ErasureChosen& event);
    void on(const session::TargetBegun& event);
    void on(const session::BlocksDone& event);
    void on(const session::DataProgress& event);
    void on(const session::TargetWritten& event);
    void on(const session::CommandRepeated& event);
    void on(const session::LinkMeasured& event);
    void on(const session::OperationEnded& event);

    std::function<std::int32_t(const session::TargetBegun&)> m_fileOf;
    session::Radio m_radio;
    bool m_anyOperation = false;
    bool m_anythingSent = false;
    bool m_mayHaveErased = false;
    bool m_lastStepRefused = false;
    bool m_incomplete = false;
    std::size_t m_locks = 0;
    Ending m_ending;
    std::int32_t m_baud = 0; ///< agreed on; 0 before that
    std::int32_t m_retries = 0;
    std::int64_t m_wireBytes = 0; ///< of the targets before the present one
    std::int64_t m_targetBytes = 0;
    std::vector<WrittenTarget> m_targets;
    std::vector<session::Component> m_chosen;
    LinkSpeeds m_links;
    std::array<std::optional<std::vector<session::Component>>, 3> m_components;
};

} // namespace fldc
