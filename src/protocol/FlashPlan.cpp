#include "protocol/FlashPlan.h"

#include "firmware/colDefTables.h"
#include "platform/PlatformFailure.h"
#include "protocol/wire/Frames.h"
#include "radio/colFlashBlocks.h"
#include "shared/LastError.h"

#include <algorithm>

namespace fldc {

std::int32_t runAddress(const DataDefinition& run)
{
    bool isNumber = false;
    const int address = run.Address.toInt(&isNumber);
    if (!isNumber)
        throw PlatformFailure(FailureNumber::TypeMismatch);
    return address;
}

bool addBlocks(std::int64_t address, std::int64_t length, const colFlashBlocks& blocks,
               BlockNumbers& numbers)
{
    const std::int64_t end = address + length;
    while (address < end) {
        const auto block = blocks.blockAround(address);
        if (!block)
            return fail(Code::FlashAddressDoesNotExist);
        if (std::ranges::find(numbers, block->ID()) == numbers.end())
            numbers.push_back(block->ID());
        address = std::int64_t{block->StartAddress()} + block->Length();
    }
    return true;
}

bool GetFileBlockList(QByteArray& strBlocks, const colDefTables& tables,
                      const colFlashBlocks& FlashBlocks)
{
    BlockNumbers numbers;
    for (std::int32_t i = 0; i < tables.Count(); ++i) {
        if (!addBlocks(runAddress(tables.Item(i)), tables.Length(i), FlashBlocks, numbers))
            return false;
    }
    if (numbers.empty())
        return fail(Code::AddressError);

    strBlocks.clear();
    for (const std::int16_t number : numbers)
        strBlocks.append(wordBytes(static_cast<std::uint16_t>(number)));
    lastError().clear();
    return true;
}

ChunkTotals estimateChunks(const colDefTables& tables)
{
    ChunkTotals totals;
    for (std::int32_t i = 0; i < tables.Count(); ++i) {
        const auto data = tables.Datablocks(i);
        totals.plain += data->Count() / static_cast<std::int32_t>(maximumFrameData) + 1;
        totals.compressed +=
            data->CompressedCount() / static_cast<std::int32_t>(maximumFrameData) + 1;
    }
    return totals;
}

} // namespace fldc
