#include "radio/colFlashBlocks.h"

#include "platform/ShowError.h"
#include "shared/HexText.h"

#include <limits>

namespace fldc {

namespace {

std::int32_t endOf(const clsFlashBlock& block)
{
    std::int32_t end = 0;
    if (__builtin_add_overflow(block.StartAddress(), block.Length(), &end))
        throw PlatformFailure(FailureNumber::Overflow);
    return end;
}

} // namespace

std::int16_t colFlashBlocks::FindBlock(std::int32_t AddressInBlock) const
{
    try {
        for (const auto& block : m_blocks.items()) {
            const std::int32_t end = endOf(*block);
            if (AddressInBlock >= block->StartAddress() && AddressInBlock < end)
                return block->ID();
        }
        return -1;
    } catch (...) {
        ShowError(currentFailure());
        return 0;
    }
}

std::shared_ptr<clsFlashBlock> colFlashBlocks::blockAround(std::int64_t address) const
{
    if (address < std::numeric_limits<std::int32_t>::min() ||
        address > std::numeric_limits<std::int32_t>::max())
        return nullptr;
    const std::int16_t number = FindBlock(static_cast<std::int32_t>(address));
    if (number < 0 || number >= Count())
        return nullptr;
    // Blocks are numbered from 0 in list order.
    auto block = Item(number + 1);
    const std::int64_t start = block->StartAddress();
    const bool inside = address >= start && address < start + block->Length();
    return inside ? block : nullptr;
}

std::shared_ptr<clsFlashBlock> colFlashBlocks::Add(std::int16_t ID, const QString& StartAddress,
                                                   const QString& Length, const QString& sKey)
{
    const auto block = std::make_shared<clsFlashBlock>();
    block->setID(ID);
    block->setStartAddress(hexToInt(StartAddress));
    block->setLength(hexToInt(Length));
    m_blocks.add(block, sKey);
    return block;
}

} // namespace fldc
