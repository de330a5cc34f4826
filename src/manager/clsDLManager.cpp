#include "manager/clsDLManager.h"

#include "app/services/LogFiles.h"
#include "app/services/LogState.h"
#include "app/services/SettingsStore.h"
#include "app/services/clsLogFile.h"
#include "firmware/colFiles.h"
#include "manager/IDownloadWindow.h"
#include "manager/Operation.h"
#include "platform/IMessageBox.h"
#include "port/Cancellation.h"
#include "port/IPort.h"
#include "protocol/clsProtocol.h"
#include "radio/clsRadio.h"

namespace fldc {

namespace {

// The entry of the window's baud-rate list at which every radio listens after a reset ("19200").
constexpr std::int32_t resetSpeedEntry = 2;

} // namespace

clsDLManager::clsDLManager(const Platform& platform, IDownloadWindowFactory& windows,
                           IWaitDialogFactory& dialogs)
    : m_platform(platform), m_windows(windows), m_window(windows.createWindow()),
      m_cancellation(std::make_shared<Cancellation>()),
      m_Protocol(std::make_shared<clsProtocol>(m_platform, static_cast<IProtocolEvents&>(*this),
                                               dialogs, m_teller))
{
    // The logs and the last error belong to the operation that runs, if one does.
    const bool inOperation = operationRuns();
    const LastError runningOutcome = lastError();
    if (!inOperation) {
        logState().enabled =
            ReadSetting(m_platform.settings, debugSetting, settingOff) == settingOn;
        CreateNewLogFile();
    }
    m_window->setDownLoadManager(this);
    m_window->load();
    m_Protocol->setPreviousBaudRate(m_window->baudRateEntry(resetSpeedEntry));
    m_creating = false;
    if (inOperation)
        lastError() = runningOutcome;
}

clsDLManager::~clsDLManager()
{
    stopTaskTimer();
    m_port.reset();
    m_Protocol.reset();
    if (!operationRuns()) {
        logState().download.reset();
        logState().configuration.reset();
    }
    m_load.files.reset();
    m_radio.reset();
    if (m_window)
        m_window->setDownLoadManager(nullptr);
}

void clsDLManager::GetLastError(std::int32_t& lngErrNum, QString& strErrDescription) const
{
    lngErrNum = lastError().number();
    strErrDescription = lastError().description();
}

QString clsDLManager::FormatMessage(std::int32_t intMessage) const
{
    return formatMessage(intMessage);
}

void clsDLManager::CreateNewLogFile()
{
    if (operationRuns())
        return;
    logState().download = std::make_shared<clsLogFile>(m_platform);
    logState().configuration = std::make_shared<clsLogFile>(m_platform);
    const LogPaths paths = chooseLogPaths(m_platform);
    m_downloadLogPath = paths.download;
    m_configurationLogPath = paths.configuration;
    logState().download->setFileName(m_downloadLogPath);
    logState().configuration->setFileName(m_configurationLogPath);
}

bool clsDLManager::FileIsOld(const QString& strPath) const
{
    return fldc::FileIsOld(m_platform, strPath);
}

void clsDLManager::BackupOldLogFile(const QString& strPath) const
{
    fldc::BackupOldLogFile(m_platform, strPath);
}

void clsDLManager::ReleaseWindow()
{
    m_window.reset();
}

void clsDLManager::cancelOperation()
{
    m_cancellation->request();
    if (operationRunsFor(*m_cancellation))
        m_platform.messages.dismiss();
}

void clsDLManager::endOperations()
{
    m_cancellation->requestForGood();
    cancelOperation();
}

bool clsDLManager::operates() const
{
    return operationRunsFor(*m_cancellation);
}

std::int32_t clsDLManager::fileNumber(const QString& imageName) const
{
    if (!m_load.files)
        return 0;
    const auto images = m_load.files->items();
    const auto image = std::ranges::find(images, imageName, &clsFile::Name);
    return image == images.end()
               ? 0
               : static_cast<std::int32_t>(m_load.paths.indexOf((*image)->SourcePath()) + 1);
}

std::vector<clsDLManager::LoadedFile> clsDLManager::loadedList() const
{
    std::vector<LoadedFile> list;
    for (const QString& path : m_load.paths) {
        const auto hash = m_load.hashes.constFind(path);
        list.push_back(
            {path, hash == m_load.hashes.constEnd() ? std::nullopt : std::optional(*hash)});
    }
    return list;
}

QString clsDLManager::portName() const
{
    return m_port ? m_port->PortName() : QString();
}

UpgradeState clsDLManager::upgradeState() const
{
    return m_Protocol->upgradeState();
}

void clsDLManager::onDownloadProgress(std::int32_t lngPercentage, const QString& strCurrentfileName,
                                      std::int32_t lngIndex)
{
    Q_EMIT DownloadProgressUpdate(lngPercentage, strCurrentfileName, lngIndex);
}

void clsDLManager::onPowerCycleRequired()
{
    Q_EMIT PowerCycleRequired();
}

} // namespace fldc
