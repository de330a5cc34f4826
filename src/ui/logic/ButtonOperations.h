#pragma once

#include "ui/logic/FileChoice.h"
#include "ui/logic/modHelp.h"

#include <QString>
#include <QStringList>

#include <cstdint>
#include <functional>
#include <memory>

namespace fldc {

class DownloadWindow;
class IFileDialogs;
class IHelpViewer;
class clsDLManager;
struct Platform;

/// What the buttons of the main window do.
///
/// No member throws: an unexpected failure is shown in the error box, and the controls come back.
/// None waits for an answer of the user, because help and "Save Details" can also be asked for in
/// the middle of a conversation with a radio; it goes on behind the dialog, and its last error is
/// not touched. The three radio operations are refused while any operation runs on the thread.
///
/// The window may go while one of the operations runs, so only a weak reference is kept and each
/// step takes hold of the window anew. Whether the buttons can be pressed is set here, around the
/// operation, and put right again whatever comes out of it.
class ButtonOperations : public std::enable_shared_from_this<ButtonOperations> {
public:
    ButtonOperations(std::weak_ptr<DownloadWindow> window, const Platform& platform,
                     IFileDialogs& dialogs, IHelpViewer& helpViewer);

    void ReportConfiguration();
    /// Asks for the files, loads them and writes them into the radio.
    void Download();
    /// The same with files that are already chosen (full paths).
    void DownloadFiles(const QStringList& paths);
    /// Asks for the files and loads them; nothing is sent.
    void ChooseFiles();
    void EraseConfiguration();
    void SaveDetails();
    /// @p windowHandle: the system's identifier of the window that asks.
    void Help(std::uintptr_t windowHandle);

private:
    using WindowPointer = std::shared_ptr<DownloadWindow>;

    [[nodiscard]] WindowPointer idleWindow() const;
    void runBusy(const std::function<void(clsDLManager&)>& operation);
    void startDownload(const std::function<void(DownloadWindow&)>& chooseFiles);
    [[nodiscard]] bool portCanBeOpened(DownloadWindow& window) const;
    void downloadChosen(const QString& strFileName);
    static void finishDownload(DownloadWindow& window, std::int16_t result);
    void writeDetails(DownloadWindow& window, const QString& strFileName) const;

    std::weak_ptr<DownloadWindow> m_window;
    const Platform& m_platform;
    std::shared_ptr<FileChoice> m_files;
    modHelp m_help;
};

} // namespace fldc
