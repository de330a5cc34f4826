#pragma once

namespace fldc {

/// Marks that an operation runs on this thread, for its life. Only the outermost is granted: what
/// arrives from an event handler in the middle of an operation is refused, whichever manager it is
/// called on, because the last error, the logs and the upgrade state are shared by the thread.
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

} // namespace fldc
