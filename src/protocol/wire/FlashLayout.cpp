#include "protocol/wire/FlashLayout.h"

#include "radio/colFlashBlocks.h"
#include "shared/HexText.h"
#include "shared/LastError.h"

#include <cstdint>
#include <limits>
#include <vector>

namespace fldc {

namespace {

constexpr qsizetype groupDigits = 16;

struct Block {
    std::uint32_t start;
    std::uint32_t length;
};

// Block numbers are 16-bit; a record that describes more blocks is malformed.
constexpr std::size_t maximumBlocks = std::numeric_limits<std::int16_t>::max();

bool addAll(colFlashBlocks& blocks, const std::vector<Block>& described)
{
    std::int16_t number = 0;
    for (const Block& block : described)
        blocks.Add(number++, hexNumber(block.start, 8), hexNumber(block.length, 8), {});
    return true;
}

} // namespace

bool ParseFlashStructure(colFlashBlocks& blocks, QStringView strData)
{
    if (strData.size() % groupDigits != 0)
        return fail(Code::DataLength);
    std::vector<Block> described;
    for (qsizetype i = 0; i < strData.size(); i += groupDigits) {
        const auto start = readHex(strData.mid(i, 8));
        const auto length = readHex(strData.mid(i + 8, 8));
        if (!start || !length)
            return fail(Code::DataLength);
        described.push_back({*start, *length});
    }
    return addAll(blocks, described);
}

bool ParseFlashRegions(colFlashBlocks& blocks, QStringView strData)
{
    const auto regions = readHex(strData.left(4));
    const qsizetype groups = (strData.size() - 4) / groupDigits;
    if (!regions || (strData.size() - 4) % groupDigits != 0 ||
        static_cast<qsizetype>(*regions) > groups)
        return fail(Code::DataLength);

    std::vector<Block> described;
    for (std::uint32_t region = 0; region < *regions; ++region) {
        const QStringView group = strData.mid(4 + groupDigits * region, groupDigits);
        const auto start = readHex(group.left(8));
        const auto size = readHex(group.mid(8, 4));
        const auto last = readHex(group.mid(12, 4));
        if (!start || !size || !last || described.size() + *last >= maximumBlocks)
            return fail(Code::DataLength);
        const std::uint32_t length = *size * 256;
        for (std::uint32_t block = 0; block <= *last; ++block)
            described.push_back({*start + block * length, length});
    }
    return addAll(blocks, described);
}

} // namespace fldc
