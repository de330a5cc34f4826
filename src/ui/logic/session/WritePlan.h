#pragma once

#include <QString>
#include <QStringList>

#include <vector>

namespace fldc {

class ConfigurationList;
class IFileService;
class colFiles;

/// One place that an image is for, or an image that is for none.
struct PlanRow {
    QString file;       ///< without folder
    QString path;       ///< as it was loaded
    QString newVersion; ///< the image's tag
    QString oldVersion; ///< what the radio has of it; empty when it has none
    QString component;  ///< what it becomes, on which hardware; else why it is not written
    bool fits = false;
};

/// What a download of @p files into the radio that reported @p radio would write, in its order. By
/// the report that the window shows: the download reads its own.
[[nodiscard]] std::vector<PlanRow> planOf(const colFiles& files, const ConfigurationList& radio);

/// Looks for wrong checksums in the records of files, a piece at a time. Nothing else does:
/// loading and writing take a record as it stands.
class ChecksumScan {
public:
    /// @p files must outlive the object.
    ChecksumScan(IFileService& files, QStringList paths);

    /// Takes a few milliseconds. False when nothing is left to do.
    [[nodiscard]] bool step();
    /// "a.srec, line 12: the checksum is wrong" so far; the first few, then how many there are.
    [[nodiscard]] QStringList faults() const;

private:
    void check(const QString& name, QByteArrayView lines);

    IFileService& m_files;
    QStringList m_paths;   ///< the first is being read
    qint64 m_position = 0; ///< in it
    qint64 m_line = 0;     ///< lines before the position
    qint64 m_piece;        ///< bytes to read of it at once
    QStringList m_faults;
    qint64 m_more = 0; ///< beyond those
};

} // namespace fldc
