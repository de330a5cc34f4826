#pragma once

#include "firmware/colDataBlocks.h"
#include "firmware/colDefTables.h"

#include <QString>
#include <QStringView>

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace fldc {

/// One firmware image: its key and component tag, the width of its data unit, the hardware it may
/// be written to, and its data as runs of contiguous addresses.
class clsFile {
public:
    /// Key under which the object stands in colFiles, which sets it.
    [[nodiscard]] QString Name() const { return m_name; }
    void setName(const QString& name) { m_name = name; }

    /// Component tag: the header text, replaced by the tag embedded in the data if there is one.
    [[nodiscard]] QString TagName() const { return m_tagName; }
    void setTagName(const QString& tagName) { m_tagName = tagName; }

    /// Width of a data unit in bits, 0 until set. Any value but 8, 16 or 32 is kept, but records
    /// code 34 as the last error.
    [[nodiscard]] std::int16_t intNumberOfBits() const { return m_numberOfBits; }
    void setIntNumberOfBits(std::int16_t bits);

    /// Type of the data records, "S1" to "S3".
    [[nodiscard]] QString strFileType() const { return m_fileType; }
    void setStrFileType(const QString& type) { m_fileType = type; }
    /// Type of the record that ends the data: "S9", "S8", "S7" respectively.
    [[nodiscard]] QString strFileTerminator() const { return m_fileTerminator; }
    void setStrFileTerminator(const QString& type) { m_fileTerminator = type; }

    /// Kept for its readers; nothing here depends on it.
    [[nodiscard]] std::int16_t intAddressLength() const { return m_addressLength; }
    void setIntAddressLength(std::int16_t length) { m_addressLength = length; }

    /// Number of targets. Setting it leaves the stored entries alone.
    [[nodiscard]] std::int32_t CountTargets() const { return m_countTargets; }
    void setCountTargets(std::int32_t count) { m_countTargets = count; }
    /// Hardware text and device number of target @p lngIndex, counted from 0; empty and 0 at or
    /// above CountTargets. Fails with 9 (index out of range) below 0 and where no entry is stored.
    [[nodiscard]] QString Hardware(std::int32_t lngIndex) const;
    [[nodiscard]] std::int32_t DeviceID(std::int32_t lngIndex) const;
    /// Appends a target.
    void AddTarget(const QString& strHardware, std::int32_t lngDevice);
    /// Replaces the targets by those of two texts whose items are separated by "|"; a device item
    /// that is not a number gives 0. Fails with 9 when @p strHardwares is empty or has more items
    /// than @p strDevices.
    void AddTargets(const QString& strHardwares, const QString& strDevices);

    [[nodiscard]] std::shared_ptr<colDataBlocks> Datablocks() const { return m_datablocks; }
    [[nodiscard]] std::shared_ptr<colDefTables> Definitiontables() const { return m_tables; }

    /// True once the image has been written to the radio.
    [[nodiscard]] bool Downloaded() const { return m_downloaded; }
    void setDownloaded(bool downloaded) { m_downloaded = downloaded; }

    /// An image for the FPGA, which can damage a radio.
    [[nodiscard]] bool isFpgaImage() const
    {
        return m_tagName.startsWith(QLatin1StringView("JVA1G"));
    }
    /// Path of the firmware file that the image was read from.
    [[nodiscard]] QString SourcePath() const { return m_sourcePath; }
    void setSourcePath(const QString& path) { m_sourcePath = path; }
    /// True for an image of a file that was refused, be the image itself complete or not: it must
    /// never reach a radio.
    [[nodiscard]] bool Rejected() const { return m_rejected; }
    void setRejected(bool rejected) { m_rejected = rejected; }

    /// Whether runs that begin at an odd address get a pad unit in front of them.
    [[nodiscard]] bool padsOddAddresses() const
    {
        return m_tagName.contains(QLatin1StringView("JWA2"));
    }

    /// Searches the data for the embedded component tag and makes it the TagName. A failure is
    /// shown in the error box and leaves the TagName alone. 8-bit and 32-bit images have no
    /// embedded tag.
    void ParseFile();

    // The steps of the tag search. Positions are byte indexes, units are read high byte first.

    /// Position of the first unit from @p lngStart on whose value is @p strValue read as
    /// hexadecimal; -1 when there is none, or no such value in units of this image's width.
    [[nodiscard]] std::int32_t FindValue(std::span<const std::uint8_t> abytData,
                                         QStringView strValue, std::int32_t lngStart) const;
    /// True when the bytes at @p lngPosition are the marker, hexadecimal text in groups of four.
    [[nodiscard]] static bool MatchMarker(std::span<const std::uint8_t> abytData,
                                          std::int32_t lngPosition, QStringView strMarker);
    /// The tag behind the marker at @p lngPosition: zero units are skipped, then each unit is a
    /// character code up to the next zero unit. Empty when no zero unit ends it.
    [[nodiscard]] QString ExtractTag(std::int32_t lngPosition,
                                     std::span<const std::uint8_t> abytData) const;

private:
    struct Target {
        QString hardware;
        std::int32_t device = 0;
    };

    [[nodiscard]] Target target(std::int32_t index) const;

    QString m_name;
    QString m_tagName;
    std::int16_t m_numberOfBits = 0;
    QString m_zeroUnit;
    QString m_fileType;
    QString m_fileTerminator;
    std::int16_t m_addressLength = 0;
    std::int32_t m_countTargets = 0;
    std::vector<Target> m_targets;
    bool m_downloaded = false;
    QString m_sourcePath;
    bool m_rejected = false;
    std::shared_ptr<colDefTables> m_tables = std::make_shared<colDefTables>();
    std::shared_ptr<colDataBlocks> m_datablocks = std::make_shared<colDataBlocks>();
};

} // namespace fldc
