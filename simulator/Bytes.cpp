#include "Bytes.h"

namespace simulator {

void append16(Bytes& bytes, std::uint32_t value)
{
    bytes.push_back(static_cast<std::uint8_t>(value >> 8U));
    bytes.push_back(static_cast<std::uint8_t>(value));
}

void append32(Bytes& bytes, std::uint32_t value)
{
    append16(bytes, value >> 16U);
    append16(bytes, value);
}

Bytes wordsToBytes(std::initializer_list<std::uint16_t> words)
{
    Bytes bytes;
    for (const std::uint16_t word : words)
        append16(bytes, word);
    return bytes;
}

std::uint16_t wordAt(ByteView bytes, std::size_t offset)
{
    return static_cast<std::uint16_t>((bytes[offset] << 8U) | bytes[offset + 1]);
}

std::uint32_t longAt(ByteView bytes, std::size_t offset)
{
    return (static_cast<std::uint32_t>(wordAt(bytes, offset)) << 16U) | wordAt(bytes, offset + 2);
}

std::uint16_t checksum(ByteView bytes)
{
    std::uint32_t sum = 0;
    for (std::size_t offset = 0; offset + 1 < bytes.size(); offset += 2)
        sum += wordAt(bytes, offset);
    return static_cast<std::uint16_t>(0xFFFFU - (sum & 0xFFFFU));
}

std::string hex(std::uint32_t value, int digits)
{
    constexpr const char* digitTexts = "0123456789ABCDEF";
    std::string text;
    for (; value != 0 || digits > 0; value >>= 4U, --digits)
        text.insert(text.begin(), digitTexts[value & 0xFU]);
    return text;
}

std::string hexText(ByteView bytes)
{
    constexpr std::size_t longest = 48;
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (bytes.size() > longest && i == longest / 2) {
            text += " ...";
            i = bytes.size() - 8;
        }
        if (i > 0)
            text += ' ';
        text += hex(bytes[i], 2);
    }
    return bytes.size() > longest ? text + " (" + std::to_string(bytes.size()) + " bytes)" : text;
}

std::string textOfWords(ByteView bytes)
{
    std::string text;
    for (std::size_t offset = 0; offset + 1 < bytes.size(); offset += 2)
        text += bytes[offset] == 0 ? static_cast<char>(bytes[offset + 1]) : '?';
    return text;
}

} // namespace simulator
