#pragma once

#include "app/RunHistory.h"
#include "app/TerminalProgress.h"
#include "platform/ShowError.h"
#include "platform/qt/QtPlatform.h"
#include "platform/qt/TerminalMessages.h"
#include "platform/qt/bus/DesktopSession.h"
#include "platform/qt/display/DesktopMessages.h"
#include "platform/qt/display/FileDialogs.h"
#include "platform/qt/display/HelpViewer.h"
#include "platform/qt/display/MessageChooser.h"
#include "ui/frmWait.h"
#include "ui/logic/WindowFactory.h"

#include <memory>

namespace fldc {

class StartUp;
class clsDLManager;

/// The program put together: the real platform, the windows, and where messages go. Lives as long
/// as the process, after the QApplication.
class Program {
public:
    /// @p onTerminal: the state of a run is shown on the standard error output, if that is a
    /// terminal.
    explicit Program(bool onTerminal);
    ~Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    /// Opens the main window and lives as long as it does. Returns the exit code.
    [[nodiscard]] int runWindow();
    /// Runs the switches of @p commandLine. Returns the exit code.
    [[nodiscard]] int runSwitches(const QString& commandLine);
    /// Serves other programs on the session bus. Returns the exit code.
    [[nodiscard]] int runAutomation();

private:
    [[nodiscard]] int runStartUp(const QString& commandLine);
    void interrupt(StartUp& startUp);
    void complain(const QString& reason);
    void watch(const std::shared_ptr<DownloadWindow>& window);
    void watch(clsDLManager& manager);
    [[nodiscard]] bool windowVisible() const;

    DesktopMessages m_desktopMessages;
    TerminalMessages m_terminalMessages;
    MessageChooser m_messages;
    ErrorBoxScope m_errorBox;
    QtPlatform m_qtPlatform;
    FileDialogs m_fileDialogs;
    HelpViewer m_helpViewer;
    DesktopSession m_desktopSession;
    WaitDialogFactory m_waitDialogs;
    WindowFactory m_windows;
    std::weak_ptr<DownloadWindow> m_latestWindow;
    QString m_complaint; ///< from before there was a window
    std::unique_ptr<TerminalProgress> m_terminal;
    RunHistory m_history;
    std::unique_ptr<session::IListener> m_recorder; ///< of the one manager of a window or a run
    bool m_ending = false;                          ///< a signal asked for it
};

} // namespace fldc
