#pragma once

#include <QString>

namespace fldc {

class DownloadWindow;
class IFileService;

/// Writes the configuration list to the file @p strFileName, which is created or replaced: one line
/// of titles and one per row, fields as they stand with "," between them, hidden columns too.
/// Latin-1, "?" for characters that it has not; every line ends with CR LF.
///
/// False when that failed: the last error is then 9011 and the status line tells the failure; lines
/// already written stay in the file.
[[nodiscard]] bool WriteDetailsFile(IFileService& files, DownloadWindow& window,
                                    const QString& strFileName);

} // namespace fldc
