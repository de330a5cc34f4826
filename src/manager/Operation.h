#pragma once

#include <memory>

namespace fldc {

class Cancellation;

/// Marks that an operation runs on this thread, for its life. Only the outermost is granted: what
/// arrives from an event handler in the middle of an operation is refused, whichever manager it is
/// called on, because the last error and the logs are shared by the thread.
///
/// A refusal is not a queue: the caller is told (13, or an error on the bus) and tries again. What
/// is put off instead, because its caller does not wait, is a task
/// (clsDLManager::AsyncTaskProcess).
class OperationScope {
public:
    OperationScope();
    ~OperationScope();
    OperationScope(const OperationScope&) = delete;
    OperationScope& operator=(const OperationScope&) = delete;

    [[nodiscard]] bool granted() const { return m_granted; }

private:
    bool m_granted;
};

/// True while an operation runs on this thread.
[[nodiscard]] bool operationRuns();

/// Says which cancellation ends the running operation, until that ends.
void claimOperation(std::shared_ptr<const Cancellation> cancellation);
/// True while the operation runs that @p cancellation ends.
[[nodiscard]] bool operationRunsFor(const Cancellation& cancellation);
/// True when the running operation was cancelled: nobody waits for its outcome any more, and a
/// question that it asks has nobody to answer it.
[[nodiscard]] bool operationCancelled();

} // namespace fldc
