#pragma once

#include "shared/ErrorCodes.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>

namespace fldc {

class DownloadWindow;
class IFileDialogs;
class ISettingsFile;
struct FileQuestion;

/// One text for the chosen files, as clsDLManager::LoadFiles takes it: one full path; several files
/// of a folder as the folder and the file names with the character of code 0 between them; files of
/// different folders as full paths with "|" between them.
[[nodiscard]] QString fileListText(const QStringList& paths);

/// The two file choices of the main window, which share one dialog and the name that it last held.
/// An answer that comes when the window or this object has gone is dropped.
class FileChoice : public std::enable_shared_from_this<FileChoice> {
public:
    /// Called with the chosen text; empty when there is none, which the last error (31 cancelled,
    /// 32 nothing chosen) and the status line then tell. Must not throw.
    using Chosen = std::function<void(const QString& strFileName)>;

    FileChoice(ISettingsFile& settings, IFileDialogs& dialogs);

    /// Firmware files to download; the answer is a text for LoadFiles.
    void SelectDownloadFile(DownloadWindow& window, Chosen chosen);
    /// The file that "Save Details" writes.
    void SelectExportFile(DownloadWindow& window, Chosen chosen);

private:
    [[nodiscard]] FileQuestion question(const char16_t* filter) const;
    [[nodiscard]] std::function<void(const std::optional<QStringList>&)>
    answerFor(DownloadWindow& window, Chosen chosen);
    void take(DownloadWindow& window, const std::optional<QStringList>& paths,
              const Chosen& chosen);
    static void showOutcome(DownloadWindow& window, Code code);

    ISettingsFile& m_settings;
    IFileDialogs& m_dialogs;
    QString m_fileName; ///< what the dialog last held
    bool m_holdsFirmware = false;
};

} // namespace fldc
