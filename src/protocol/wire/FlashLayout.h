#pragma once

#include <QStringView>

namespace fldc {

class colFlashBlocks;

// Both add the blocks that a record of the radio describes to @p blocks, numbered from 0 in order.
// A malformed record adds none and gives last error 54; the result is true when it is 0.
// @p strData: the data digits of the record.

/// A sequence of blocks: start address (8 digits) and length in bytes (8 digits) each.
[[nodiscard]] bool ParseFlashStructure(colFlashBlocks& blocks, QStringView strData);

/// A count of regions (4 digits), then per region the start address of its first block (8 digits),
/// the block size in units of 256 bytes (4) and the number of its blocks minus 1 (4).
[[nodiscard]] bool ParseFlashRegions(colFlashBlocks& blocks, QStringView strData);

} // namespace fldc
