#include "BareParser.h"

#include <array>

namespace fldc::bench {

namespace {

constexpr auto digitValues = [] {
    std::array<std::uint8_t, 256> values{};
    values.fill(0xFF);
    for (std::uint8_t i = 0; i < 10; ++i)
        values[static_cast<std::size_t>('0') + i] = i;
    for (std::uint8_t i = 0; i < 6; ++i) {
        values[static_cast<std::size_t>('A') + i] = static_cast<std::uint8_t>(10 + i);
        values[static_cast<std::size_t>('a') + i] = static_cast<std::uint8_t>(10 + i);
    }
    return values;
}();

std::uint8_t byteAt(const std::uint8_t* digits)
{
    return static_cast<std::uint8_t>(digitValues[digits[0]] << 4U | digitValues[digits[1]]);
}

} // namespace

std::optional<std::vector<std::uint8_t>> parseBare(std::span<const std::uint8_t> text)
{
    std::vector<std::uint8_t> data;
    const std::uint8_t* p = text.data();
    const std::uint8_t* const end = p + text.size();
    while (end - p >= 4) {
        const std::uint8_t* const digits = p + 4;
        const std::size_t count = byteAt(p + 2);
        if (p[0] != 'S' || static_cast<std::size_t>(end - digits) < 2 * count)
            return std::nullopt;
        if (p[1] == '3' && count >= 5) {
            const std::size_t bytes = count - 5;
            const std::size_t position = data.size();
            data.resize(position + bytes);
            for (std::size_t i = 0; i < bytes; ++i)
                data[position + i] = byteAt(digits + 8 + 2 * i);
        }
        p = digits + 2 * count;
        while (p < end && (*p == '\r' || *p == '\n'))
            ++p;
    }
    return data;
}

} // namespace fldc::bench
