#include "manager/Operation.h"

#include "port/Cancellation.h"

#include <utility>

namespace fldc {

namespace {

thread_local bool runs = false;
thread_local std::shared_ptr<const Cancellation> claimed;

} // namespace

OperationScope::OperationScope() : m_granted(!runs)
{
    runs = true;
}

OperationScope::~OperationScope()
{
    if (!m_granted)
        return;
    runs = false;
    claimed.reset();
}

bool operationRuns()
{
    return runs;
}

void claimOperation(std::shared_ptr<const Cancellation> cancellation)
{
    claimed = std::move(cancellation);
}

bool operationRunsFor(const Cancellation& cancellation)
{
    return claimed.get() == &cancellation;
}

bool operationCancelled()
{
    return claimed && claimed->requested();
}

} // namespace fldc
