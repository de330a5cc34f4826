#include "protocol/wire/LineSpeeds.h"

#include "protocol/wire/Frames.h"

namespace fldc {

namespace {

// Where the speeds of a list entry stand in lineSpeeds: the whole table for "Auto", else one.
struct Choice {
    std::size_t first;
    std::size_t count;
};

constexpr std::array choices{
    Choice{0, lineSpeeds.size()}, // Auto
    Choice{0, 1},                 // 115200
    Choice{2, 1},                 // 19200
    Choice{3, 1},                 // 9600
    Choice{1, 1},                 // 57600
};

} // namespace

std::span<const std::uint32_t> speedsToTry(std::int32_t listIndex)
{
    if (listIndex < 0 || static_cast<std::size_t>(listIndex) >= choices.size())
        return {};
    const Choice& choice = choices[static_cast<std::size_t>(listIndex)];
    return std::span(lineSpeeds).subspan(choice.first, choice.count);
}

QByteArray speedCode(std::uint32_t speed)
{
    return wordBytes(static_cast<std::uint16_t>(speed / 1200));
}

} // namespace fldc
