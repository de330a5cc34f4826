#pragma once

#include <QDateTime>

#include <chrono>

namespace fldc {

class IClock {
public:
    virtual ~IClock() = default;

    /// Local date and time.
    [[nodiscard]] virtual QDateTime now() const = 0;
    /// Time since an arbitrary start; never runs backwards and ignores changes of the wall clock.
    [[nodiscard]] virtual std::chrono::microseconds monotonic() const = 0;
};

/// The fixed text form of a date and time in the logs: "2026-11-22 21:05:33".
[[nodiscard]] inline QString dateTimeText(const QDateTime& time)
{
    return time.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
}

} // namespace fldc
