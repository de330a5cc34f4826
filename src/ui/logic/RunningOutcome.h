#pragma once

#include "manager/Operation.h"
#include "shared/LastError.h"

#include <optional>

namespace fldc {

/// What the user does behind a running operation must not become that operation's outcome: while
/// one runs, the last error is put back at the end of the scope. Otherwise it does nothing.
class RunningOutcome {
public:
    RunningOutcome()
    {
        if (operationRuns())
            m_keeper.emplace();
    }

private:
    std::optional<LastErrorKeeper> m_keeper;
};

} // namespace fldc
