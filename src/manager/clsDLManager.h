#pragma once

#include "firmware/Compression.h"
#include "firmware/check/ContentHash.h"
#include "platform/Platform.h"
#include "protocol/IProtocolEvents.h"
#include "protocol/UpgradeState.h"
#include "session/Listener.h"
#include "shared/Enumerations.h"
#include "shared/LastError.h"

#include <QHash>
#include <QObject>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace fldc {

class Cancellation;
class IDownloadWindow;
class IDownloadWindowFactory;
class IPort;
class IWaitDialogFactory;
class clsConfiguration;
class clsFile;
class clsProtocol;
class clsRadio;
class colConfigurations;
class colFiles;

/// The one object through which everything is done: it owns the window, the protocol, the port, the
/// radio model and the loaded files, and runs loads, reports, downloads and erasures.
///
/// Every radio operation has the same frame, whatever it does inside:
///
///   1. It is refused when another one runs on the thread (Operation.h).
///   2. It takes copies of window, port, protocol and radio model, and uses no member in their
///      place from then on (Session.h): any wait may replace or drop them.
///   3. It serves what is pending, so that a request to end counts before the first byte is sent.
///   4. It opens the logs and the line, unless the connection was kept, and works through its steps
///      until one of them leaves an error.
///   5. The closing steps run whatever happened, each on its own: status line, line, logs. What
///      fails there does not change the outcome.
///   6. Only when the thread is free again is the end told to clients.
///
/// What ends an operation early: cancelOperation() and endOperations(), and whoever unloads the
/// window. All of them take effect at the next wait, with code 1; none of them waits for it.
///
/// Status-returning members return the last-error number after the operation (0 = success) and
/// never throw; the others may throw PlatformFailure, which is said where it can happen. A radio
/// operation, load or port change that arrives while an operation runs on the thread returns 13 and
/// changes nothing.
class clsDLManager final : public QObject, private IProtocolEvents {
    Q_OBJECT

public:
    /// Creates and loads a window, which chooses the first listed port.
    clsDLManager(const Platform& platform, IDownloadWindowFactory& windows,
                 IWaitDialogFactory& dialogs);
    ~clsDLManager() override;

    // -- Radio operations

    /// Reads the radio's configurations. Without a user @p strFiles receives the report text.
    std::int16_t ReportConfigurations(QString& strFiles);
    /// Erases the configurations at the positions @p FilesToErase ("2|5|", from 1) of the last
    /// report or download; 9011, and nothing sent, when that was not read to its end. The result is
    /// that of reading again afterwards; the last status line tells when something was not erased.
    /// Without a user @p strFilesToReport receives the report text read afterwards.
    std::int16_t EraseSelected(const QString& FilesToErase, QString& strFilesToReport);
    /// Writes every loaded file into the radio. 37 when some were not written; their tags are then
    /// the detail text that FormatMessage(37) shows, and the last error is 0. Nothing is sent when
    /// a file of the list was refused (34), none could be loaded (the load's code), or the load was
    /// cancelled (1). Without a user @p strFilesToReport receives the report text read afterwards.
    std::int16_t DownLoad(QString& strFilesToReport);
    /// Restarts the radio on the port as it is.
    std::int32_t ResetRadio();

    // -- Port, window, connection

    /// Chooses the port @p strPort (a listed entry, or a number) and shows or hides the window.
    std::int16_t SetPort(const QString& strPort, bool blnUI);
    /// Shows or hides the window. 0, which leaves the last error as it was, or 15.
    std::int16_t SetUIMode(bool blnUIMode);
    /// Unloads the window and drops it. In the middle of an operation it also ends that as a user's
    /// cancel does.
    void ShutDownUiLessMode();
    /// Selects the entry of the window's baud-rate list with that value; none: no change. Throws
    /// when there is no window.
    void SetBaudRate(std::int32_t lngBaudRate);
    [[nodiscard]] enmRadioType RadioType() const { return m_radioType; }
    void setRadioType(enmRadioType type) { m_radioType = type; }
    [[nodiscard]] bool StayConnected() const { return m_stayConnected; }
    /// Ignored while a user is present or an operation runs. Throws when there is no window.
    void setStayConnected(bool blnNew);
    void setAccessLevel(enmAccessLevel level);

    // -- Files

    /// Loads the files that @p FilesToDL names: folder and file names, or paths between "|", or one
    /// path. The separator of the folder form is the character with code 0.
    std::int16_t LoadFiles(const QString& FilesToDL);
    std::int16_t LoadFilesEx(const QString& FilesToDL, const QString& strSeparator);
    /// Every element between separators is a full path.
    void LoadFilesByPath(const QString& strFilePaths, const QString& strSeparator);
    /// How the files loaded from now on are compressed; nothing: as the setting Compression says.
    void setCompression(std::optional<Compression> compression) { m_compression = compression; }
    /// Adds the images of one file to the loaded files. Code 34. Throws when nothing was ever
    /// loaded.
    void ValidFile(const QString& strFileName);

    // -- Errors

    void GetLastError(std::int32_t& lngErrNum, QString& strErrDescription) const;
    /// Message of a code; throws for a number without one.
    [[nodiscard]] QString FormatMessage(std::int32_t intMessage) const;

    // -- Tasks

    /// Starts an operation that runs after this call has returned. False when it was refused: a
    /// task is pending or running, or @p eAsyncTaskID is none of the three.
    bool AsyncTaskProcess(enmAsyncTaskID eAsyncTaskID, const QString& strInput = {});
    [[nodiscard]] bool AsyncTaskBusy() const { return m_asyncBusy; }

    // -- Logs

    /// Makes new log objects and chooses their files. Throws when no pair of files is usable.
    void CreateNewLogFile();
    /// True when the file was last changed on another day than today. Throws when it can't be read.
    [[nodiscard]] bool FileIsOld(const QString& strPath) const;
    /// Moves the file to its name with "old_" before it. Throws when that fails.
    void BackupOldLogFile(const QString& strPath) const;

    // -- For the component only

    /// Who else is told of every event of the operations to come and of the running one. The
    /// caller keeps it alive until it removes it. Loads tell nothing.
    void addListener(session::IListener& listener) { m_teller->addListener(listener); }
    void removeListener(session::IListener& listener) { m_teller->removeListener(listener); }
    /// The window lets go of the manager while it unloads.
    void ReleaseWindow();
    /// Ends the running operation of this manager at its next wait with code 1, and the message
    /// boxes that it has open as if nobody had answered.
    void cancelOperation();
    /// The same for good: every later operation ends with code 1, too, before anything is sent. For
    /// a process that is about to end.
    void endOperations();
    /// Restarts the radio, whatever it is doing, with the log and the line opened and closed
    /// around it. Codes 42, 21 and the port's.
    std::int16_t RestartFromAnyState();
    /// Measures the line at every speed by @p rounds short exchanges, which only listeners hear
    /// of (LinkMeasured), and restarts the radio. The result is that of the log-on and the restart.
    std::int16_t TestLink(std::int32_t rounds);
    /// What is known of the upgrade mode of this manager's radio.
    [[nodiscard]] UpgradeState upgradeState() const;
    /// SetBaudRate that counts for a download without a user, too, which goes by the automatic
    /// choice otherwise.
    void chooseSpeed(std::int32_t lngBaudRate);
    /// Takes back a task that has not started; nothing happens when none waits.
    void withdrawTask();
    /// True when the last download went through but some of its files were written nowhere, also
    /// when the restart behind it failed. FormatMessage(37) names them.
    [[nodiscard]] bool filesLeftOver() const { return m_filesLeftOver; }
    /// Whether the operation that runs on the thread is one of this manager's.
    [[nodiscard]] bool operates() const;
    /// Whether a task has started and not ended.
    [[nodiscard]] bool AsyncTaskRuns() const { return m_asyncBusy && m_AsyncTaskTimer == 0; }
    /// The images of the last load that was not cancelled, in the order in which a download writes
    /// them; null before it.
    [[nodiscard]] std::shared_ptr<const colFiles> loadedFiles() const { return m_load.files; }
    /// Has the files hashed that are loaded from now on: for who records what was written.
    void hashFiles() { m_hashesFiles = true; }
    /// A file of the last load's list, and what it held; nothing when it could not be read.
    struct LoadedFile {
        QString path;
        std::optional<ContentHash> content;
    };
    [[nodiscard]] std::vector<LoadedFile> loadedList() const;
    /// Number of the port in decimal ("1"); empty when none is chosen.
    [[nodiscard]] QString portName() const;
    /// What SetPort and SetUIMode said last: whether a user is to be shown what happens.
    [[nodiscard]] bool UIMode() const { return m_uiMode; }
    /// Number of the file, from 1 in the order of the last load's list, that the image with that
    /// name was read from; 0 for none.
    [[nodiscard]] std::int32_t fileNumber(const QString& imageName) const;

Q_SIGNALS:
    /// Emitted while the operation still runs; a handler must return for it to go on.
    void DownloadProgressUpdate(int lngPercentage, const QString& strCurrentfileName, int lngIndex);
    /// At the very end of every download and report, with the final report text: the thread is
    /// free, so that a handler may start the next operation.
    void ReportConfigurationsUpdate(const QString& strReportConfigurations);
    void PowerCycleRequired();
    /// For the component only: a file of a list was left out or rejected. The last error says why,
    /// and @p reason in plain words.
    void FileNotLoaded(const QString& path, const QString& reason);
    /// For the component only: AsyncTaskBusy has another value.
    void AsyncTaskBusyChanged();
    /// For the component only: a load runs; listeners hear of the other operations.
    void LoadBegun();
    /// For the component only: how far the running load is, in whole percent of its list.
    void LoadAdvanced(int percent);
    /// For the component only: the last that happens to an operation, loads included. An
    /// erasure's own failure, not that of reading again.
    void OperationCompleted(int code, const QString& message);

private:
    struct Session;
    struct Download;
    enum class Trap { KeepCode, ReplaceCode };
    /// What the last load was given and made of it.
    struct Load {
        std::shared_ptr<colFiles> files;
        QStringList paths;
        QHash<QString, ContentHash> hashes; ///< by path
    };

    /// A boot application that can't be sent.
    struct BootFileFault {
        QString path;   ///< empty: none
        QString reason; ///< why it is not valid; empty: it is missing
        [[nodiscard]] QString text(const QString& message) const;
    };

    // Frame of the operations (clsDLManager_session.cpp)
    [[nodiscard]] Session beginSession();
    void logRadioOn(Session& session);
    void SendBootApplication(Session& session, const QString& strFileName);
    void trap(Trap kind, const std::function<void()>& steps);
    [[nodiscard]] std::int16_t takeResult() const;
    [[nodiscard]] static session::Component componentOf(const clsConfiguration& configuration);
    void tellConfigurations(session::Reading when, const clsRadio& radio) const;
    void tellEnded(const LastError& outcome);
    void complete();
    void closeSession(Session& session, const QString& statusText);
    static void showOutcome(Session& session, const QString& statusText);
    static void closeLogs(Session& session);

    // Download (clsDLManager_download.cpp)
    void downloadSteps(Session& session, QString& strFilesToReport);
    [[nodiscard]] bool mayBeWritten(const colFiles& files) const;
    [[nodiscard]] bool confirmFpgaUpgrade(const colFiles& files);
    [[nodiscard]] bool writeFile(Download& download, clsFile& file);
    [[nodiscard]] bool writeWithoutTargets(Download& download, clsFile& file);
    [[nodiscard]] bool writeToNetwork(Download& download, clsFile& file, std::int32_t target,
                                      std::int16_t network);
    [[nodiscard]] bool writeBlocks(Download& download, clsFile& file,
                                   std::optional<session::Place> place);

    // Report (clsDLManager_report.cpp) and erasure (clsDLManager_erase.cpp)
    void reportSteps(Session& session, QString& strFiles);
    void eraseSteps(Session& session, const QString& FilesToErase);
    void tellChosen(const colConfigurations& known, const QStringList& positions) const;
    void rereadAfterErasure(Session& session, QString& strFilesToReport);
    [[nodiscard]] static QString eraseOutcome(const LastError& erasure);

    // Loading (clsDLManager_load.cpp)
    std::int16_t loadPaths(const QStringList& paths, bool rememberFirst);
    void loadSteps(Session& session, const QStringList& paths, bool rememberFirst);
    void restore(const Load& before);
    QString readFile(const QString& path, const std::shared_ptr<colFiles>& files,
                     const Pace& pace = {});
    /// For the @p file th (from 0) of @p files files.
    [[nodiscard]] Pace servingPace(qsizetype file = 0, qsizetype files = 1);

    // Port and window (clsDLManager_port.cpp)
    std::int16_t runOnLine(session::Operation kind, const std::function<void(Session&)>& steps);
    void linkTestSteps(Session& session, std::int32_t rounds);
    void choosePort(const QString& strPort, bool blnUI);
    [[nodiscard]] static bool findPort(IDownloadWindow& window, const QString& strPort);
    void showWindow(bool blnUI);
    void ensureWindow();
    void closeConnection();
    [[nodiscard]] IDownloadWindow& window() const;
    [[nodiscard]] bool userPresent() const;

    // Tasks (clsDLManager_tasks.cpp)
    void RunAsyncTask();
    void EndAsyncTask(enmAsyncTaskID task, QString text);
    void noTask();
    void stopTaskTimer();

    // IProtocolEvents
    void onDownloadProgress(std::int32_t lngPercentage, const QString& strCurrentfileName,
                            std::int32_t lngIndex) override;
    void onPowerCycleRequired() override;

    Platform m_platform;
    IDownloadWindowFactory& m_windows;

    bool m_asyncBusy = false;
    QString m_asyncInput;
    enmAsyncTaskID m_asyncTask = eNone;
    enmRadioType m_radioType{};
    std::shared_ptr<IDownloadWindow> m_window;
    std::shared_ptr<clsRadio> m_radio;
    Load m_load;
    bool m_hashesFiles = false;
    Code m_loadCode = Code::Success; ///< of the last load
    bool m_filesLeftOver = false;    ///< by the last download
    std::optional<Compression> m_compression;
    BootFileFault m_bootFileFault;
    session::OperationEnded m_ended; ///< how the operation ended that is about to complete
    std::shared_ptr<IPort> m_port;
    bool m_uiMode = false;
    bool m_speedChosen = false;
    QString m_downloadLogPath;
    QString m_configurationLogPath;
    bool m_stayConnected = false;
    bool m_creating = true;
    std::shared_ptr<Cancellation> m_cancellation;
    std::shared_ptr<session::Teller> m_teller = std::make_shared<session::Teller>();
    std::shared_ptr<clsProtocol> m_Protocol;
    int m_AsyncTaskTimer = 0; ///< 0 while no task is pending
};

} // namespace fldc
