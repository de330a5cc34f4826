#include "fldc/gang/Board.h"

#include "fldc/output/ProgressView.h"

#include <algorithm>

namespace fldc::cli {

using namespace Qt::StringLiterals;

namespace {

QString nameOf(const Unit& unit)
{
    return u"%1 %2"_s.arg(oneLine(unit.port().name), -7).arg(oneLine(unit.label()), -12);
}

BoardLine lineOf(const Unit& unit)
{
    if (!unit.isRunning() && unit.result())
        return resultLine(unit);
    if (!unit.isRunning())
        return {nameOf(unit) + u"  waiting"_s, BoardLine::Tone::Plain};
    const UnitProgress& progress = unit.progress();
    QString text = nameOf(unit) + u" %1 % "_s.arg(progress.percent, 3) + barText(progress.percent) +
                   u" %1 kB/s  "_s.arg(progress.bytesPerSecond / 1000, 5, 'f', 1);
    if (progress.secondsLeft)
        text += timeText(*progress.secondsLeft) + u" left  "_s;
    return {text + oneLine(progress.step), BoardLine::Tone::Plain};
}

} // namespace

std::vector<BoardLine> boardOf(const std::vector<std::unique_ptr<Unit>>& units,
                               const GangCounts& counts)
{
    std::vector<BoardLine> lines;
    lines.reserve(units.size() + 1);
    for (const auto& unit : units)
        lines.push_back(lineOf(*unit));
    const auto running =
        std::ranges::count_if(units, [](const auto& unit) { return unit->isRunning(); });
    lines.push_back({u"%1 ports: %2 at work, %3 passed, %4 failed"_s.arg(units.size())
                         .arg(running)
                         .arg(counts.passed)
                         .arg(counts.failed),
                     BoardLine::Tone::Plain});
    return lines;
}

BoardLine resultLine(const Unit& unit)
{
    const UnitResult& result = *unit.result();
    return {nameOf(unit) + (result.passed() ? u"  passed  "_s : u"  FAILED  "_s) +
                oneLine(result.message),
            result.passed() ? BoardLine::Tone::Good : BoardLine::Tone::Bad};
}

} // namespace fldc::cli
