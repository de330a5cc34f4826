// One flash device. It refuses what real flash refuses: erasing or writing a locked block, writing
// to bytes that are not erased, and anything outside its blocks.
#pragma once

#include "Bytes.h"
#include "device/FaultWords.h"
#include "device/Profiles.h"

#include <optional>

namespace simulator {

class Flash {
public:
    struct Block {
        std::uint32_t start = 0;  // units
        std::uint32_t length = 0; // units
        bool locked = true;
    };
    using BlockNumbers = std::vector<std::uint16_t>;

    /// All blocks locked, and full of old firmware: nothing can be written before it is erased.
    explicit Flash(const MemoryDevice& layout);

    const MemoryDevice& layout() const { return m_layout; }
    const std::vector<Block>& blocks() const { return m_blocks; }
    ByteView bytes() const { return m_bytes; }
    Bytes& bytes() { return m_bytes; }

    /// The three operations on blocks do all of what is asked or, refusing, nothing.
    /// InvalidAddress for a block that does not exist; FlashLocked for erasing a locked one.
    FaultWord setLocked(const BlockNumbers& numbers, bool locked);
    FaultWord erase(const BlockNumbers& numbers);
    /// As flash is after power-up.
    void lockAll();

    /// Where the unit of that address begins, as an index into bytes(); nothing outside the device.
    std::optional<std::size_t> offsetOf(std::uint32_t address) const;
    /// Writes bytes at an index; nothing is written when the write is refused.
    /// InvalidAddress behind the end, FlashLocked, or FlashNotErased for a byte that is not FF.
    FaultWord write(std::size_t offset, ByteView data);
    /// Whether one of these blocks holds the address.
    bool holds(const BlockNumbers& numbers, std::uint32_t address) const;

    /// The component tag embedded in the bytes from `begin` to `end`: a marker, then the
    /// characters, one per unit, up to a zero unit. Empty when there is none.
    std::string tagBetween(std::size_t begin, std::size_t end) const;

private:
    bool allExist(const BlockNumbers& numbers) const;
    std::size_t indexOf(const Block& block) const;
    std::size_t sizeOf(const Block& block) const;

    const MemoryDevice& m_layout;
    std::vector<Block> m_blocks;
    Bytes m_bytes;
};

} // namespace simulator
