#pragma once

#include "app/CommandLine.h"

#include <QString>

#include <functional>
#include <memory>
#include <optional>

namespace fldc {

class IDownloadWindowFactory;
class IWaitDialogFactory;
class clsDLManager;
struct Platform;

/// The process entry of a program that a user or another program started: opens the main window, or
/// runs one download without a user and tells the exit code.
class StartUp {
public:
    /// Where the run tells of what goes on.
    struct Listener {
        /// Called with the manager before anything is done with it.
        std::function<void(clsDLManager&)> managerMade;
        /// Why the run ends with exit code 1.
        std::function<void(const QString& reason)> failed;
    };

    StartUp(const Platform& platform, IDownloadWindowFactory& windows, IWaitDialogFactory& dialogs,
            Listener listener);
    ~StartUp();

    /// Runs the command line @p text (the arguments joined by blanks). Returns the exit code, 0 or
    /// 1; nothing when the main window was opened, which the process then lives for.
    [[nodiscard]] std::optional<int> run(const QString& text);

    /// Ends whatever runs as a user's cancel does, and nothing is begun any more. A run of switches
    /// then returns 1.
    void interrupt();
    [[nodiscard]] bool interrupted() const { return m_interrupted; }

private:
    [[nodiscard]] int runSwitches(const SwitchTable& switches);
    void runDownload(const SwitchTable& switches);
    [[nodiscard]] bool choosePort(const SwitchTable& switches);
    void loadAndDownload(const QString& files);
    void stopIfInterrupted() const;

    const Platform& m_platform;
    IDownloadWindowFactory& m_windows;
    IWaitDialogFactory& m_dialogs;
    Listener m_listener;
    std::unique_ptr<clsDLManager> m_manager;
    bool m_interrupted = false;
};

} // namespace fldc
