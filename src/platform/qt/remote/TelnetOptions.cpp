#include "platform/qt/remote/TelnetOptions.h"

#include <algorithm>

namespace fldc::telnet {

QByteArray Options::offer()
{
    QByteArray all;
    for (Side& side : m_sides) {
        side.state = State::Asked;
        all += negotiation(side.ours ? will : doIt, side.option);
    }
    return all;
}

QByteArray Options::answer(std::uint8_t verb, std::uint8_t option)
{
    const bool ours = verb == doIt || verb == dont;
    const bool on = verb == doIt || verb == will;
    const std::uint8_t yes = ours ? will : doIt;
    const std::uint8_t no = ours ? wont : dont;
    auto* side = std::ranges::find_if(
        m_sides, [&](const Side& each) { return each.ours == ours && each.option == option; });
    if (side == m_sides.end())
        return on ? negotiation(no, option) : QByteArray();
    const State before = side->state;
    side->state = on ? State::On : State::Refused;
    if (before == State::Asked || before == side->state)
        return {};
    return negotiation(on ? yes : no, option);
}

bool Options::agreed() const
{
    return std::ranges::all_of(
        m_sides, [](const Side& side) { return !side.needed || side.state == State::On; });
}

bool Options::refused() const
{
    return std::ranges::any_of(
        m_sides, [](const Side& side) { return side.needed && side.state == State::Refused; });
}

} // namespace fldc::telnet
