#include "protocol/FlashPlan.h"

#include "firmware/clsFile.h"
#include "platform/PlatformFailure.h"
#include "protocol/wire/Frames.h"
#include "radio/colFlashBlocks.h"
#include "shared/LastError.h"

#include <algorithm>
#include <vector>

namespace fldc {

namespace {

using BlockNumbers = std::vector<std::int16_t>;

std::int32_t addressOf(const DataDefinition& table)
{
    bool isNumber = false;
    const int address = table.Address.toInt(&isNumber);
    if (!isNumber)
        throw PlatformFailure(FailureNumber::TypeMismatch);
    return address;
}

// Adds the blocks between the table's start and its end; false when an address is in none.
bool addBlocksOf(const DataDefinition& table, const colFlashBlocks& blocks, BlockNumbers& numbers)
{
    std::int64_t address = addressOf(table);
    std::int64_t remaining = table.Length;
    while (remaining > 0) {
        const std::int16_t number = blocks.FindBlock(static_cast<std::int32_t>(address));
        if (number < 0)
            return fail(Code::FlashAddressDoesNotExist);
        if (std::ranges::find(numbers, number) == numbers.end())
            numbers.push_back(number);
        // Blocks are numbered from 0 in list order.
        const auto block = blocks.Item(number + 1);
        const std::int64_t step = std::int64_t{block->StartAddress()} + block->Length() - address;
        if (step <= 0)
            return fail(Code::FlashAddressDoesNotExist);
        address += step;
        remaining -= step;
    }
    return true;
}

} // namespace

bool GetFileBlockList(QByteArray& strBlocks, const clsFile& CurrentFile,
                      const colFlashBlocks& FlashBlocks)
{
    BlockNumbers numbers;
    const auto tables = CurrentFile.Definitiontables();
    for (std::int32_t i = 0; i < tables->Count(); ++i) {
        if (!addBlocksOf(tables->Item(i), FlashBlocks, numbers))
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

ChunkTotals estimateChunks(const clsFile& file)
{
    ChunkTotals totals;
    const auto tables = file.Definitiontables();
    for (std::int32_t i = 0; i < tables->Count(); ++i) {
        const auto data = tables->Datablocks(i);
        totals.plain += data->Count() / static_cast<std::int32_t>(maximumFrameData) + 1;
        totals.compressed +=
            data->CompressedCount() / static_cast<std::int32_t>(maximumFrameData) + 1;
    }
    return totals;
}

} // namespace fldc
