#pragma once

#include <functional>
#include <string>
#include <vector>

namespace fldc::bench {

/// What is measured: the wall clock, or the processor time of this process, which other programs on
/// the machine hardly change.
enum class Time { Wall, Processor };

/// Competitors measured side by side: each round runs every one of them once, so that a change of
/// the machine's mood meets all of them alike.
class SideBySide {
public:
    explicit SideBySide(Time time) : m_time(time) {}

    /// @p run does the work once; false ends the benchmark as failed.
    void add(std::string name, std::function<bool()> run);
    /// One warm-up round and @p rounds measured ones; false when a competitor failed.
    [[nodiscard]] bool measure(int rounds);
    /// Median of the measured rounds in milliseconds; 0 for a name that was not added.
    [[nodiscard]] double median(const std::string& name) const;
    /// One table row per competitor: median, fastest, slowest, payload rate.
    void print(double payloadMebibytes) const;

private:
    struct Competitor {
        std::string name;
        std::function<bool()> run;
        std::vector<double> milliseconds;
    };
    Time m_time;
    std::vector<Competitor> m_competitors;
};

} // namespace fldc::bench
