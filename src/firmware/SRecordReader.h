#pragma once

#include "firmware/SRecordImage.h"
#include "firmware/check/ContentHash.h"
#include "firmware/colFiles.h"

#include <QByteArrayView>
#include <QString>

#include <memory>
#include <optional>
#include <vector>

namespace fldc {

class IFileService;
class SRecordLine;
class TextLines;

/// Why a firmware file was not accepted.
struct NotValid {
    qint64 line = 0; ///< from 1; 0 when no line was read
    QString reason;  ///< in plain words

    /// "line 12: an empty line inside the data"
    [[nodiscard]] QString text() const;
};

/// Reads a firmware file: Motorola S-records with header lines of the system's own, one or several
/// images one after another.
///
///     //, CI        comment, ignored
///     DW 16         width of a data unit in bits: 8, 16 or 32
///     MD "HW", 2    hardware that the next image may be written to, and its device number
///     S0...         starts an image; its text is the image's tag
///     S1, S2, S3    data, ended by S9, S8, S7 respectively
///
/// Without a DW line units are 16 bits wide, or 8 when the header text contains "JWA2". Addresses
/// count units. Checksums are not verified. Nothing but records of its one type may stand inside
/// an image's data.
class SRecordReader {
public:
    /// Images read are added to @p images. @p files must outlive the object. @p pace is called
    /// while a file is read; to give up makes the file not valid.
    SRecordReader(IFileService& files, std::shared_ptr<colFiles> images,
                  Compression compression = Compression::Zlib, Pace pace = {});

    /// Has the content of each file hashed, too.
    void hashContent() { m_hashes = true; }
    /// Of the file that was read last; nothing unless it was asked for and the file could be read.
    [[nodiscard]] const std::optional<ContentHash>& contentHash() const { return m_hash; }

    /// Reads the file: the first image is added under @p path, each further one under the name of
    /// the one before with "1" appended; a name that an image of another file has gets a number
    /// that is free (colFiles::freeName). Records 0 as the last error when the file is valid, else
    /// 34, and returns why; what has been added by then stays, marked as rejected. Never throws.
    std::optional<NotValid> read(const QString& path);

private:
    struct LineKind;
    /// What has been collected for the image to come, or the one begun.
    struct Header {
        bool seen = false; ///< its S0 record
        std::int16_t unitBits = 0;
        QString hardwares;
        QString devices;
        QString latestHardware;
    };

    [[nodiscard]] bool readLines(TextLines& lines);
    [[nodiscard]] bool ignoreLine(TextLines& lines);
    [[nodiscard]] bool readTarget(TextLines& lines);
    [[nodiscard]] bool readWidth(TextLines& lines);
    [[nodiscard]] bool readHeader(TextLines& lines);
    [[nodiscard]] bool readData(TextLines& lines);
    [[nodiscard]] bool reject(const QString& reason);
    void markRejected();

    IFileService& m_files;
    std::shared_ptr<colFiles> m_images;
    Compression m_compression;
    Pace m_pace;
    bool m_hashes = false;
    std::optional<ContentHash> m_hash;

    QString m_path;
    QString m_imageName;
    std::shared_ptr<clsFile> m_image;             ///< the one begun last; null before the first
    std::vector<std::shared_ptr<clsFile>> m_read; ///< of this file, in order
    bool m_completed = false; ///< the latest image reached its terminator record
    Header m_header;
    QString m_reason;
};

} // namespace fldc
