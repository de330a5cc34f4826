#pragma once

#include "firmware/Compression.h"
#include "firmware/DecodedRecord.h"
#include "firmware/SRecordLine.h"
#include "firmware/clsFile.h"

#include <QByteArrayView>
#include <QString>

#include <cstdint>
#include <limits>
#include <memory>

namespace fldc {

class TextLines;

/// The types of record that carry data, each with what belongs to it.
struct DataRecordType {
    QByteArrayView type;
    QByteArrayView terminator;
    int addressDigits = 0;
};

/// The data record type of that name; null when there is none.
[[nodiscard]] const DataRecordType* dataRecordType(QByteArrayView type);

/// Reads the data records of one image into the definition tables of its object: a new table, with
/// its own data, wherever a record's address does not continue the one before.
class SRecordImage {
public:
    /// @p pace must outlive the object.
    SRecordImage(std::shared_ptr<clsFile> file, const DataRecordType& type, Compression compression,
                 const Pace& pace);

    /// Reads from the present line of @p lines, a data record, up to the terminator record, which
    /// becomes the present line. False when the data are not valid: reason() says why. May also
    /// throw PlatformFailure.
    [[nodiscard]] bool read(TextLines& lines);
    [[nodiscard]] const QString& reason() const { return m_reason; }

private:
    [[nodiscard]] bool keepsPace();
    [[nodiscard]] bool addLine(const SRecordLine& line);
    [[nodiscard]] bool addText(const QString& digits);
    [[nodiscard]] bool addDecoded(DecodedRecord& record);
    [[nodiscard]] bool isComplete(DecodedRecord& record) const;
    [[nodiscard]] bool startRecord(std::int32_t address);
    [[nodiscard]] bool startTable(std::int32_t address);
    void endRecord(std::int32_t address, std::int32_t units);
    [[nodiscard]] bool finishData();
    [[nodiscard]] bool finish();
    void setLength(std::int64_t units);
    [[nodiscard]] bool reject(const QString& reason);

    std::shared_ptr<clsFile> m_file;
    const DataRecordType& m_type;
    Compression m_compression;
    const Pace& m_pace;
    const TextLines* m_lines = nullptr; ///< while they are read
    double m_finished = 0;              ///< share of the text whose data are finished
    std::uint32_t m_recordsRead = 0;
    int m_unitBytes;
    bool m_padsOddAddress;

    std::int32_t m_nextAddress = std::numeric_limits<std::int32_t>::max();
    std::shared_ptr<colDataBlocks> m_data; ///< of the present table
    std::int64_t m_units = 0;              ///< of the present table
    bool m_pad = false;                    ///< the next record gets a unit in front of it
    DecodedRecord m_record;
    QString m_reason;
};

} // namespace fldc
