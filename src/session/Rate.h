#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <optional>

namespace fldc::session {

/// Rate and time left of a transfer, smoothed over its last seconds. Time is handed in, from any
/// monotonic clock.
class Rate {
public:
    using milliseconds = std::chrono::milliseconds;

    /// How far back the rate looks.
    static constexpr milliseconds window{5000};

    /// @p bytes in all have been transferred at @p now. The first call, and one with fewer bytes
    /// than the one before, starts anew from there.
    void add(milliseconds now, std::int64_t bytes);

    /// Bytes a second over the window before @p now, or since the start when that is later; 0
    /// while nothing is known. A transfer that stands still slows down to 0 within a window.
    [[nodiscard]] double bytesPerSecond(milliseconds now) const;

    /// Seconds until @p total bytes are transferred at this rate; nothing while the rate is 0.
    [[nodiscard]] std::optional<double> secondsLeft(milliseconds now, std::int64_t total) const;

private:
    struct Sample {
        milliseconds time;
        std::int64_t bytes;
    };

    // In order of time. The first may be older than the window: the rate begins between it and the
    // next one.
    std::deque<Sample> m_samples;
};

} // namespace fldc::session
