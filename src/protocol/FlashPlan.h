#pragma once

#include <QByteArray>

#include <cstdint>
#include <vector>

namespace fldc {

class colDefTables;
class colFlashBlocks;
struct DataDefinition;

/// Numbers of flash blocks, from 0 in the order of the radio's reply.
using BlockNumbers = std::vector<std::int16_t>;

/// Start address of the run, in units. Throws PlatformFailure for a text that is not a number.
[[nodiscard]] std::int32_t runAddress(const DataDefinition& run);

/// Adds to @p numbers the blocks that the @p length units from @p address on touch, each once.
/// False, and last error 8201, when an address lies in no block.
[[nodiscard]] bool addBlocks(std::int64_t address, std::int64_t length,
                             const colFlashBlocks& blocks, BlockNumbers& numbers);

/// The numbers of the flash blocks that @p tables touch, two bytes each, high byte first, in the
/// order in which they are first touched. True when the last error is 0; else 8201 (an address
/// outside every block) or 52 (no block is touched). Throws PlatformFailure for an address text
/// that is not a number.
[[nodiscard]] bool GetFileBlockList(QByteArray& strBlocks, const colDefTables& tables,
                                    const colFlashBlocks& FlashBlocks);

/// Chunks that a file's data will make, estimated: each table's bytes divided by the frame size
/// (whole division) plus 1.
struct ChunkTotals {
    std::int32_t plain = 0;
    std::int32_t compressed = 0;
};

[[nodiscard]] ChunkTotals estimateChunks(const colDefTables& tables);

} // namespace fldc
