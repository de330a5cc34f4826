#include "Stopwatch.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <utility>

namespace fldc::bench {

namespace {

double medianOf(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::ranges::nth_element(values, middle);
    return *middle;
}

double millisecondsNow(Time time)
{
    if (time == Time::Processor)
        return static_cast<double>(std::clock()) * 1000.0 / CLOCKS_PER_SEC;
    const std::chrono::duration<double, std::milli> now =
        std::chrono::steady_clock::now().time_since_epoch();
    return now.count();
}

} // namespace

void SideBySide::add(std::string name, std::function<bool()> run)
{
    m_competitors.push_back({std::move(name), std::move(run), {}});
}

bool SideBySide::measure(int rounds)
{
    for (int round = 0; round <= rounds; ++round) {
        for (Competitor& competitor : m_competitors) {
            const double start = millisecondsNow(m_time);
            if (!competitor.run()) {
                std::fprintf(stderr, "%s failed\n", competitor.name.c_str());
                return false;
            }
            if (round > 0) // the first round warms up
                competitor.milliseconds.push_back(millisecondsNow(m_time) - start);
        }
    }
    return true;
}

double SideBySide::median(const std::string& name) const
{
    const auto found = std::ranges::find(m_competitors, name, &Competitor::name);
    return found == m_competitors.end() ? 0.0 : medianOf(found->milliseconds);
}

void SideBySide::print(double payloadMebibytes) const
{
    for (const Competitor& competitor : m_competitors) {
        const double median = medianOf(competitor.milliseconds);
        const auto [fastest, slowest] = std::ranges::minmax(competitor.milliseconds);
        std::printf("| %-44s | %9.2f | %9.2f | %9.2f | %8.1f |\n", competitor.name.c_str(), median,
                    fastest, slowest, payloadMebibytes * 1000.0 / median);
    }
}

} // namespace fldc::bench
