#include "session/Rate.h"

#include <algorithm>

namespace fldc::session {

namespace {

// Samples closer to each other than this become one, so that a fast transfer needs no more memory
// than a slow one.
constexpr std::chrono::milliseconds grain{50};

} // namespace

void Rate::add(milliseconds now, std::int64_t bytes)
{
    if (!m_samples.empty() && bytes < m_samples.back().bytes)
        m_samples.clear();
    const bool replacesLast =
        m_samples.size() >= 2 && now - m_samples[m_samples.size() - 2].time < grain;
    if (replacesLast)
        m_samples.pop_back();
    m_samples.push_back({now, bytes});
    while (m_samples.size() >= 2 && m_samples[1].time <= now - window)
        m_samples.pop_front();
}

double Rate::bytesPerSecond(milliseconds now) const
{
    if (m_samples.empty())
        return 0;
    const milliseconds from = std::max(now - window, m_samples.front().time);
    // Bytes at the window's start, on the straight line between the samples around it.
    const auto later = std::ranges::upper_bound(m_samples, from, {}, &Sample::time);
    const Sample& before = *std::prev(later);
    double bytesAtStart = static_cast<double>(before.bytes);
    if (later != m_samples.end()) {
        const std::chrono::duration<double> passed = from - before.time;
        const std::chrono::duration<double> whole = later->time - before.time;
        bytesAtStart += static_cast<double>(later->bytes - before.bytes) * (passed / whole);
    }
    const std::chrono::duration<double> seconds = now - from;
    if (seconds.count() <= 0)
        return 0;
    return (static_cast<double>(m_samples.back().bytes) - bytesAtStart) / seconds.count();
}

std::optional<double> Rate::secondsLeft(milliseconds now, std::int64_t total) const
{
    const double rate = bytesPerSecond(now);
    if (rate <= 0)
        return std::nullopt;
    return std::max(0.0, static_cast<double>(total - m_samples.back().bytes) / rate);
}

} // namespace fldc::session
