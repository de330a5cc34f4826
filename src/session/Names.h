#pragma once

#include "session/Events.h"

#include <QStringView>

#include <array>

namespace fldc::session {

// How enumerators are named to programs: part of the interface, like the names of the states.

[[nodiscard]] constexpr QStringView nameOf(Operation operation)
{
    constexpr std::array<QStringView, 5> names{u"report", u"download", u"erase", u"restart",
                                               u"link-test"};
    return names[static_cast<std::size_t>(operation)];
}

[[nodiscard]] constexpr QStringView nameOf(Reading when)
{
    constexpr std::array<QStringView, 3> names{u"before", u"after", u"report"};
    return names[static_cast<std::size_t>(when)];
}

[[nodiscard]] constexpr QStringView nameOf(BlockAction action)
{
    constexpr std::array<QStringView, 3> names{u"unlocked", u"erased", u"locked"};
    return names[static_cast<std::size_t>(action)];
}

[[nodiscard]] constexpr QStringView nameOf(LooksLike like)
{
    constexpr std::array<QStringView, 3> names{u"own echo", u"text", u"other"};
    return names[static_cast<std::size_t>(like)];
}

} // namespace fldc::session
