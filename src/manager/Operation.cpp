#include "manager/Operation.h"

namespace fldc {

namespace {

thread_local bool runs = false;

} // namespace

OperationScope::OperationScope() : m_granted(!runs)
{
    runs = true;
}

OperationScope::~OperationScope()
{
    if (m_granted)
        runs = false;
}

bool operationRuns()
{
    return runs;
}

} // namespace fldc
