#pragma once

#include "firmware/colDefTables.h"

#include <memory>

namespace fldc {

class clsFile;
class colFlashBlocks;

/// The runs of @p file as they are to be written into flash with the blocks @p blocks.
///
/// Flash takes an even number of bytes, so a run of bytes (8-bit units) with an odd number of them
/// needs a pad byte, and where the reader puts it (behind the run; in front of one that must begin
/// at an even address) other things may stand. A pad never lies in a block that the file's own
/// bytes do not touch, which would be erased for it alone, nor on an address of another run. There
/// the run gets its pad in front instead, or is joined with the run that continues it. Runs that
/// need none of that are handed on as they are.
///
/// Null, and last error 54, when a pad fits nowhere; 8201 when the file itself does not fit. Throws
/// PlatformFailure for an address text that is not a number.
[[nodiscard]] std::shared_ptr<const colDefTables> placePads(const clsFile& file,
                                                            const colFlashBlocks& blocks);

} // namespace fldc
