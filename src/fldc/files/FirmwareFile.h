#pragma once

#include "firmware/Compression.h"
#include "shared/ErrorCodes.h"

#include <QString>

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace fldc {
class clsFile;
class colFiles;
} // namespace fldc

namespace fldc::cli {

class InputFiles;
struct InputFile;

/// What is wrong in a firmware file.
struct FileError {
    struct Checksum {
        std::uint8_t expected = 0;
        std::uint8_t found = 0;
    };
    qint64 line = 0; ///< from 1; 0 when the fault is in no line
    QString reason;
    std::optional<Checksum> checksum; ///< alone it does not make a file not valid
};

/// A firmware file as it was read.
struct FirmwareFile {
    const InputFile* input = nullptr;
    std::vector<FileError> errors;                ///< by line
    bool valid = false;                           ///< no error but checksums
    Code code = Code::Success;                    ///< 33 or 34 when it is not valid
    std::vector<std::shared_ptr<clsFile>> images; ///< in the file's order; none unless valid

    /// "a.srec, line 12: the record is shorter than its count says" of the first error that counts.
    [[nodiscard]] QString firstFault() const;
};

/// Reads a file of the command line and checks every record. Its images are added to @p images.
/// A file with a field that can't be read is not valid here, although the component would read it
/// with 0 in the field's place.
[[nodiscard]] FirmwareFile readFirmware(const InputFile& input, InputFiles& files,
                                        const std::shared_ptr<colFiles>& images,
                                        Compression compression);

} // namespace fldc::cli
