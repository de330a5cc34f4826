#pragma once

#include "session/Events.h"
#include "shared/LastError.h"

#include <algorithm>
#include <utility>
#include <vector>

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
    /// The caller keeps @p listener alive until it removes it. Told in the order of coming.
    void addListener(IListener& listener) { m_listeners.push_back(&listener); }
    void removeListener(IListener& listener) { std::erase(m_listeners, &listener); }
    /// Whether anybody listens: guards what is worth avoiding for nobody.
    [[nodiscard]] bool heard() const { return !m_listeners.empty(); }

    template <class Kind>
    void tell(Kind&& event) const
    {
        if (!heard())
            return;
        const LastErrorKeeper operationsOwn;
        const Event told(std::forward<Kind>(event));
        // A listener may bring or remove others, itself too.
        for (IListener* const listener : std::vector(m_listeners)) {
            if (std::ranges::find(m_listeners, listener) != m_listeners.end())
                listener->onEvent(told);
        }
    }

private:
    std::vector<IListener*> m_listeners;
};

} // namespace fldc::session
