#pragma once

#include "shared/ErrorCodes.h"

#include <QString>

#include <cstdint>

namespace fldc {

class PlatformFailure;

/// The outcome of the latest step on this thread: a code and, for the codes 9011 and 37, a detail
/// text. The last write wins; there is no stack of errors.
class LastError {
public:
    [[nodiscard]] Code code() const { return m_code; }
    [[nodiscard]] bool ok() const { return m_code == Code::Success; }
    [[nodiscard]] std::int32_t number() const { return static_cast<std::int32_t>(m_code); }
    [[nodiscard]] const QString& detail() const { return m_detail; }

    void set(Code code) { m_code = code; }
    void clear() { m_code = Code::Success; }
    void setDetail(const QString& detail) { m_detail = detail; }
    /// 9011 with the failure's number and description as the detail.
    void setRuntimeError(const PlatformFailure& failure);

    /// Message of the present code; 9011 gives its detail, 37 its message and the detail.
    /// Throws PlatformFailure (invalid argument) for a code without a message.
    [[nodiscard]] QString description() const;

private:
    Code m_code = Code::Success;
    QString m_detail;
};

/// The last error of the calling thread.
[[nodiscard]] LastError& lastError();

/// Records @p code and returns false: `return fail(Code::DataLength);`.
inline bool fail(Code code)
{
    lastError().set(code);
    return false;
}

/// Message of code @p number; 37 gives its message, a line break and the present detail.
/// Throws PlatformFailure (invalid argument) for a number without a message.
[[nodiscard]] QString formatMessage(std::int32_t number);

/// Text of the status line after an operation: @p successText for success, the detail for 9011,
/// else "Error " + code + " - " + message.
[[nodiscard]] QString statusLine(const QString& successText);
/// The same, but 9011 shows its message like any other code.
[[nodiscard]] QString statusLineWithoutDetail(const QString& successText);

/// Keeps the last error over a stretch of closing steps: what they record is taken back.
class LastErrorKeeper {
public:
    LastErrorKeeper() : m_kept(lastError()) {}
    ~LastErrorKeeper() { lastError() = m_kept; }
    LastErrorKeeper(const LastErrorKeeper&) = delete;
    LastErrorKeeper& operator=(const LastErrorKeeper&) = delete;

private:
    LastError m_kept;
};

} // namespace fldc
