#include "device/Flash.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace simulator {

namespace {

constexpr std::uint8_t erasedByte = 0xFF;
constexpr std::array<std::uint8_t, 10> tagMarker{0x2A, 0x2F, 0x69, 0x42, 0x62,
                                                 0x62, 0x45, 0x6C, 0x2F, 0x2A};

void fillWithOldFirmware(Bytes& bytes)
{
    constexpr std::string_view pattern = "OLD FIRMWARE... ";
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<std::uint8_t>(pattern[i % pattern.size()]);
}

} // namespace

Flash::Flash(const MemoryDevice& layout) : m_layout(layout)
{
    for (const Region& region : layout.regions) {
        for (std::uint32_t i = 0; i < region.blocks; ++i)
            m_blocks.push_back({region.start + i * region.blockSize, region.blockSize});
    }
    m_bytes.resize(indexOf(m_blocks.back()) + sizeOf(m_blocks.back()));
    fillWithOldFirmware(m_bytes);
}

std::size_t Flash::indexOf(const Block& block) const
{
    return std::size_t{block.start - m_blocks.front().start} * m_layout.unitBytes;
}

std::size_t Flash::sizeOf(const Block& block) const
{
    return std::size_t{block.length} * m_layout.unitBytes;
}

bool Flash::allExist(const BlockNumbers& numbers) const
{
    return std::all_of(numbers.begin(), numbers.end(), [&](auto n) { return n < m_blocks.size(); });
}

FaultWord Flash::setLocked(const BlockNumbers& numbers, bool locked)
{
    if (!allExist(numbers))
        return FaultWord::InvalidAddress;
    for (const std::uint16_t number : numbers)
        m_blocks[number].locked = locked;
    return FaultWord::None;
}

FaultWord Flash::erase(const BlockNumbers& numbers)
{
    if (!allExist(numbers))
        return FaultWord::InvalidAddress;
    if (std::any_of(numbers.begin(), numbers.end(), [&](auto n) { return m_blocks[n].locked; }))
        return FaultWord::FlashLocked;
    for (const std::uint16_t number : numbers) {
        const Block& block = m_blocks[number];
        std::fill_n(m_bytes.begin() + static_cast<std::ptrdiff_t>(indexOf(block)), sizeOf(block),
                    erasedByte);
    }
    return FaultWord::None;
}

void Flash::lockAll()
{
    for (Block& block : m_blocks)
        block.locked = true;
}

std::optional<std::size_t> Flash::offsetOf(std::uint32_t address) const
{
    const std::uint32_t start = m_blocks.front().start;
    if (address < start || std::size_t{address - start} * m_layout.unitBytes >= m_bytes.size())
        return std::nullopt;
    return std::size_t{address - start} * m_layout.unitBytes;
}

FaultWord Flash::write(std::size_t offset, ByteView data)
{
    if (data.size() > m_bytes.size() - offset)
        return FaultWord::InvalidAddress;
    for (const Block& block : m_blocks) {
        const std::size_t begin = indexOf(block);
        if (block.locked && offset < begin + sizeOf(block) && begin < offset + data.size())
            return FaultWord::FlashLocked;
    }
    const auto target = m_bytes.begin() + static_cast<std::ptrdiff_t>(offset);
    if (std::any_of(target, target + std::ssize(data),
                    [](auto byte) { return byte != erasedByte; }))
        return FaultWord::FlashNotErased;
    std::copy(data.begin(), data.end(), target);
    return FaultWord::None;
}

bool Flash::holds(const BlockNumbers& numbers, std::uint32_t address) const
{
    return std::any_of(numbers.begin(), numbers.end(), [&](std::uint16_t number) {
        const Block& block = m_blocks[number];
        return address >= block.start && address - block.start < block.length;
    });
}

std::string Flash::tagBetween(std::size_t begin, std::size_t end) const
{
    const std::size_t unit = m_layout.unitBytes;
    const auto at = [&](std::size_t i) { return m_bytes.begin() + static_cast<std::ptrdiff_t>(i); };
    const auto found = std::search(at(begin), at(end), tagMarker.begin(), tagMarker.end());
    if (found == at(end))
        return {};
    const auto isZero = [&](std::size_t i) {
        return std::all_of(at(i), at(i + unit), [](auto byte) { return byte == 0; });
    };
    std::size_t i = static_cast<std::size_t>(found - at(0)) + tagMarker.size();
    while (i + unit <= end && isZero(i))
        i += unit;
    std::string tag;
    for (; i + unit <= end && !isZero(i); i += unit)
        tag += static_cast<char>(m_bytes[i + unit - 1]);
    return tag;
}

} // namespace simulator
