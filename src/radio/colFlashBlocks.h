#pragma once

#include "radio/clsFlashBlock.h"
#include "shared/KeyedCollection.h"

#include <QString>

#include <cstdint>
#include <memory>
#include <vector>

namespace fldc {

/// The map of the radio's flash, in the order of its reply. Positions count from 1; a position or
/// key that is not there throws PlatformFailure (invalid argument, number 5).
class colFlashBlocks {
public:
    /// ID of the first block that contains the address (its start is inside, its end outside;
    /// signed 32-bit values), or -1. A block whose end is beyond 32 bits shows the error box; the
    /// result is then 0.
    [[nodiscard]] std::int16_t FindBlock(std::int32_t AddressInBlock) const;
    /// The block that FindBlock names, when the address really lies inside it; else null. FindBlock
    /// alone can't be trusted: after an overflow it names block 0.
    [[nodiscard]] std::shared_ptr<clsFlashBlock> blockAround(std::int64_t address) const;
    /// Appends a block. @p StartAddress and @p Length: 1 to 8 hexadecimal digits. @p sKey may be
    /// empty. Throws PlatformFailure: type mismatch or overflow for other text, duplicate key.
    std::shared_ptr<clsFlashBlock> Add(std::int16_t ID, const QString& StartAddress,
                                       const QString& Length, const QString& sKey);
    [[nodiscard]] std::shared_ptr<clsFlashBlock> Item(std::int32_t position) const
    {
        return m_blocks.item(position);
    }
    [[nodiscard]] std::shared_ptr<clsFlashBlock> Item(const QString& key) const
    {
        return m_blocks.item(key);
    }
    [[nodiscard]] std::int32_t Count() const { return m_blocks.count(); }
    void Remove(std::int32_t position) { m_blocks.remove(position); }
    void Remove(const QString& key) { m_blocks.remove(key); }
    /// The blocks in order, as a copy.
    [[nodiscard]] std::vector<std::shared_ptr<clsFlashBlock>> items() const
    {
        return m_blocks.items();
    }

private:
    KeyedCollection<clsFlashBlock> m_blocks;
};

} // namespace fldc
