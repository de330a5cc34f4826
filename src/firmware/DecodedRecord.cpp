#include "firmware/DecodedRecord.h"

#include "shared/HexText.h"

#include <bit>
#include <cstring>

namespace fldc {

namespace {

constexpr std::int16_t notAByte = -1;

// Two characters as they lie in memory, so that one load gets both.
using Pair = std::uint16_t;

constexpr Pair pairOf(std::uint8_t first, std::uint8_t second)
{
    return std::bit_cast<Pair>(std::array{first, second});
}

// The byte that two characters stand for. Of the table's 128 KiB no more than the 2 KiB for pairs
// of upper-case digits are in use, so it stays in the processor's first cache.
constexpr auto byteOfPair = [] {
    std::array<std::int16_t, 0x10000> bytes{};
    bytes.fill(notAByte);
    for (std::uint8_t high = 0; high < 0x80; ++high) {
        for (std::uint8_t low = 0; low < 0x80 && hexDigit(high) >= 0; ++low) {
            if (hexDigit(low) >= 0)
                bytes[pairOf(high, low)] =
                    static_cast<std::int16_t>(hexDigit(high) * 16 + hexDigit(low));
        }
    }
    return bytes;
}();

// Decodes @p count bytes; false when a character is not a digit.
bool decodeBytes(const std::uint8_t* digits, std::size_t count, std::uint8_t* bytes)
{
    int seen = 0;
    for (std::size_t i = 0; i < count; ++i) {
        Pair pair = 0;
        std::memcpy(&pair, digits + 2 * i, sizeof pair);
        const std::int16_t byte = byteOfPair[pair];
        seen |= byte;
        bytes[i] = static_cast<std::uint8_t>(byte);
    }
    return seen >= 0;
}

} // namespace

bool DecodedRecord::decode(std::span<const std::uint8_t> text, std::array<std::uint8_t, 2> type)
{
    std::uint8_t count = 0;
    if (text.size() < 4 || text[0] != type[0] || text[1] != type[1] ||
        !decodeBytes(&text[2], 1, &count))
        return false;
    m_count = count;
    if (text.size() < length() || !decodeBytes(text.data() + 4, m_count, m_bytes.data()))
        return false;
    return text.size() == length() || text[length()] == '\r' || text[length()] == '\n';
}

} // namespace fldc
