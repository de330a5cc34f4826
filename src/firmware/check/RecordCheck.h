#pragma once

#include <QString>

#include <cstdint>
#include <vector>

namespace fldc {

class TextLines;

/// An S-record that does not hold what its own count or checksum says.
struct RecordFault {
    enum class Kind : std::uint8_t {
        Checksum,       ///< expected and found differ
        TooShort,       ///< the line ends before the bytes that the count promises
        NotHexadecimal, ///< something else than digits within them
    };
    qint64 line = 0; ///< from 1
    Kind kind = Kind::Checksum;
    bool isData = false; ///< an S1, S2 or S3 record, whose bytes would go to the radio
    std::uint8_t expected = 0;
    std::uint8_t found = 0;

    /// "the checksum is wrong"
    [[nodiscard]] QString reason() const;
};

/// The faults of the S-records in the lines that are left of a firmware file, in their order. A
/// record's checksum is the ones' complement of the sum of its count, address and data bytes,
/// modulo 256. For reports: reading a file looks at no checksum. Takes time in proportion to the
/// text, memory to the faults.
[[nodiscard]] std::vector<RecordFault> checkRecords(TextLines& lines);

} // namespace fldc
