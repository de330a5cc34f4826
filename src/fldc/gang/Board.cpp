#include "fldc/gang/Board.h"

#include "fldc/output/ProgressView.h"
#include "shared/NumberText.h"

#include <algorithm>
#include <array>

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
        return resultLine(unit, unit.next());
    if (!unit.isRunning())
        return {nameOf(unit) + u"  waiting"_s, BoardLine::Tone::Plain};
    const UnitProgress& progress = unit.progress();
    QString text = nameOf(unit) + u" %1 % "_s.arg(progress.percent, 3) + barText(progress.percent) +
                   u" %1 kB/s  "_s.arg(progress.bytesPerSecond / 1000, 5, 'f', 1);
    if (progress.secondsLeft)
        text += timeText(*progress.secondsLeft) + u" left  "_s;
    return {text + oneLine(progress.step), BoardLine::Tone::Plain};
}

// How a unit stands: the first to be left out comes first.
enum class Standing { Passed, Failed, Waiting, AtWork };

Standing standingOf(const Unit& unit)
{
    if (unit.isRunning())
        return Standing::AtWork;
    if (!unit.result())
        return Standing::Waiting;
    return unit.result()->passed() ? Standing::Passed : Standing::Failed;
}

constexpr std::array standingTexts{u"passed", u"failed", u"waiting", u"at work"};

// Those that are left out of a board of so many lines of units, in the order of standing and, of
// one standing, of the ports.
std::vector<const Unit*> leftOut(const std::vector<std::unique_ptr<Unit>>& units, std::size_t lines)
{
    std::vector<const Unit*> hidden;
    hidden.reserve(units.size());
    for (const auto& unit : units)
        hidden.push_back(unit.get());
    std::ranges::stable_sort(hidden, {}, [](const Unit* unit) { return standingOf(*unit); });
    hidden.resize(units.size() - std::min(units.size(), lines));
    return hidden;
}

// "not shown: 2 passed (COM1 COM4), 1 failed (COM2)"
QString hiddenText(const std::vector<const Unit*>& hidden)
{
    std::array<QStringList, standingTexts.size()> names;
    for (const Unit* unit : hidden)
        names.at(static_cast<std::size_t>(standingOf(*unit))).append(oneLine(unit->port().name));
    QStringList parts;
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (!names.at(i).isEmpty())
            parts.append(u"%1 %2 (%3)"_s.arg(names.at(i).size())
                             .arg(QStringView(standingTexts.at(i)), names.at(i).join(u' ')));
    }
    return u"not shown: "_s + parts.join(u", "_s);
}

} // namespace

std::vector<BoardLine> boardOf(const std::vector<std::unique_ptr<Unit>>& units,
                               const GangCounts& counts, std::size_t rows)
{
    const bool allFit = units.size() < rows;
    const auto hidden = leftOut(units, allFit ? rows : std::max<std::size_t>(rows, 3) - 2);
    std::vector<BoardLine> lines;
    lines.reserve(units.size() + 2);
    for (const auto& unit : units) {
        if (std::ranges::find(hidden, unit.get()) == hidden.end())
            lines.push_back(lineOf(*unit));
    }
    if (!hidden.empty())
        lines.push_back({hiddenText(hidden), BoardLine::Tone::Plain});
    const auto running =
        std::ranges::count_if(units, [](const auto& unit) { return unit->isRunning(); });
    lines.push_back(
        {u"%1: %2 at work, %3 passed, %4 failed"_s.arg(counted(std::ssize(units), u"port"))
             .arg(running)
             .arg(counts.passed)
             .arg(counts.failed),
         BoardLine::Tone::Plain});
    return lines;
}

BoardLine resultLine(const Unit& unit, const QString& next)
{
    const UnitResult& result = *unit.result();
    return {nameOf(unit) + (result.passed() ? u"  passed"_s : u"  FAILED"_s) +
                (next.isEmpty() ? next : u", "_s + next) + u"  "_s + oneLine(result.message),
            result.passed() ? BoardLine::Tone::Good : BoardLine::Tone::Bad};
}

} // namespace fldc::cli
