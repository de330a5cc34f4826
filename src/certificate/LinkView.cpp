#include "certificate/LinkView.h"

#include "certificate/JsonObject.h"

#include <algorithm>
#include <cmath>

namespace fldc {

using namespace Qt::StringLiterals;

namespace {

/// The round trip in milliseconds that @p share of them (0 to 1) do not exceed, by nearest rank;
/// nothing where none was answered.
std::optional<double> roundTrip(const session::LinkMeasured& link, double share)
{
    if (link.roundTrips.empty())
        return std::nullopt;
    auto sorted = link.roundTrips;
    std::ranges::sort(sorted);
    const auto rank =
        static_cast<std::size_t>(std::ceil(share * static_cast<double>(sorted.size())));
    const auto& at = sorted.at(std::max<std::size_t>(rank, 1) - 1);
    return std::chrono::duration<double, std::milli>(at).count();
}

QJsonValue jsonOf(std::optional<double> value)
{
    return value ? QJsonValue(*value) : QJsonValue();
}

QString textOf(std::optional<double> milliseconds)
{
    return milliseconds ? QString::number(*milliseconds, 'f', 1) + u" ms"_s : u"-"_s;
}

} // namespace

QJsonObject linkObject(const session::LinkMeasured& link)
{
    return makeObject(kind::link, {{"baud"_L1, static_cast<qint64>(link.baud)},
                                   {"rounds"_L1, link.rounds},
                                   {"lost"_L1, link.lost},
                                   {"corrupt"_L1, link.corrupt},
                                   {"median_ms"_L1, jsonOf(roundTrip(link, 0.5))},
                                   {"p99_ms"_L1, jsonOf(roundTrip(link, 0.99))},
                                   {"agreed"_L1, link.agreed}});
}

QString linkLines(const LinkSpeeds& links)
{
    if (links.empty())
        return {};
    QString text = u"  Baud  Exchanges  Lost  Corrupt     Median  99 % below\n"_s;
    for (const session::LinkMeasured& each : links) {
        text += QString::number(each.baud).rightJustified(6);
        text += !each.agreed ? u"  not agreed on\n"_s
                             : u"  %1  %2  %3  %4  %5\n"_s.arg(each.rounds, 9)
                                   .arg(each.lost, 4)
                                   .arg(each.corrupt, 7)
                                   .arg(textOf(roundTrip(each, 0.5)), 9)
                                   .arg(textOf(roundTrip(each, 0.99)), 10);
    }
    return text;
}

std::optional<std::uint32_t> bestSpeed(const LinkSpeeds& links)
{
    std::optional<std::uint32_t> best;
    for (const session::LinkMeasured& each : links) {
        if (each.agreed && each.rounds > 0 && each.lost == 0 && each.corrupt == 0)
            best = std::max(best.value_or(0), each.baud);
    }
    return best;
}

} // namespace fldc
