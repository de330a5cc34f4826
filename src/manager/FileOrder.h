#pragma once

#include <QString>
#include <QStringList>

namespace fldc {

class colFiles;

/// The full paths that a file-list text names. With @p separator in it: a folder, then file names
/// in that folder; else with "|" in it: full paths; else the text is one path.
[[nodiscard]] QStringList SplitFileList(const QString& text, const QString& separator);

/// Every element between separators, as a full path.
[[nodiscard]] QStringList splitPaths(const QString& text, const QString& separator);

/// Puts the files into the order in which they must reach the radio, by their tags: FPGA images,
/// boot code, other components of the radio, everything else; within each the order as it was.
void OrderFilesForDownload(colFiles& files);

} // namespace fldc
