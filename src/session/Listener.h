#pragma once

#include "session/Events.h"
#include "shared/LastError.h"

#include <utility>

namespace fldc::session {

/// Who is told of a session's events: on the thread of the operation, in their order, each before
/// the operation goes on. It may take its time (the radio waits) and ask for a cancel, but neither
/// throw nor start an operation; the last error that it leaves is not seen.
class IListener {
public:
    virtual ~IListener() = default;
    virtual void onEvent(const Event& event) noexcept = 0;
};

/// What the manager, its protocol and its ports tell through; the manager owns it and they share
/// it, so that a listener which leaves in the middle of an operation is not called again by a port
/// that the operation still holds. Without a listener, telling costs one comparison.
class Teller {
public:
    /// The caller keeps @p listener alive until it gives another one; nullptr: nobody.
    void setListener(IListener* listener) { m_listener = listener; }
    /// Whether anybody listens: guards what is worth avoiding for nobody.
    [[nodiscard]] bool heard() const { return m_listener != nullptr; }

    template <class Kind>
    void tell(Kind&& event) const
    {
        if (m_listener == nullptr)
            return;
        const LastErrorKeeper operationsOwn;
        m_listener->onEvent(Event(std::forward<Kind>(event)));
    }

private:
    IListener* m_listener = nullptr;
};

} // namespace fldc::session
