#pragma once

#include <QByteArray>

#include <cstdint>

namespace fldc {

class clsFile;
class colFlashBlocks;

/// The numbers of the flash blocks that @p CurrentFile touches, two bytes each, high byte first, in
/// the order in which the file first touches them. True when the last error is 0; else 8201 (an
/// address outside every block) or 52 (the file touches none). Throws PlatformFailure for an
/// address text that is not a number.
[[nodiscard]] bool GetFileBlockList(QByteArray& strBlocks, const clsFile& CurrentFile,
                                    const colFlashBlocks& FlashBlocks);

/// Chunks that a file's data will make, estimated: each table's bytes divided by the frame size
/// (whole division) plus 1.
struct ChunkTotals {
    std::int32_t plain = 0;
    std::int32_t compressed = 0;
};

[[nodiscard]] ChunkTotals estimateChunks(const clsFile& file);

} // namespace fldc
