#pragma once

#include "certificate/Outcome.h"
#include "fldc/files/FirmwareFile.h"

#include <QString>

#include <memory>
#include <optional>
#include <vector>

namespace fldc {
class colFiles;
}

namespace fldc::cli {

struct Context;

// Steps that several commands have in common. Each tells what it finds; one that ends the command
// returns its outcome.

/// The firmware files of the command line, all of them in one list, in the order in which they
/// would reach a radio.
struct LoadedFirmware {
    std::vector<FirmwareFile> files; ///< as they were named
    std::shared_ptr<colFiles> images;
};

/// As --compression or the setting says.
[[nodiscard]] Compression compressionOf(const Context& context);

/// Reads the files; every one must be valid. Before the line is opened. Else exit code 3.
[[nodiscard]] std::optional<Outcome> loadFirmware(Context& context, Compression compression,
                                                  LoadedFirmware& firmware);

/// Exit code 1 for an FPGA image without --allow-fpga.
[[nodiscard]] std::optional<Outcome> refuseFpga(const Context& context,
                                                const LoadedFirmware& firmware);

/// The outcome for files that are not valid: the first of them, and the code of the last.
[[nodiscard]] Outcome notValid(const std::vector<FirmwareFile>& files);

} // namespace fldc::cli
