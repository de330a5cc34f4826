#include "ui/logic/ButtonOperations.h"

#include "app/services/LogState.h"
#include "manager/Operation.h"
#include "manager/clsDLManager.h"
#include "platform/IMessageBox.h"
#include "platform/ISerialControl.h"
#include "platform/Platform.h"
#include "platform/ShowError.h"
#include "port/PortEnumeration.h"
#include "shared/LastError.h"
#include "ui/logic/DetailsFile.h"
#include "ui/logic/DownloadWindow.h"
#include "ui/logic/RunningOutcome.h"

#include <utility>

namespace fldc {

namespace {

// The help book's topic of the main window.
constexpr std::int32_t helpContext = 2368;

// Runs @p steps; false when they failed, which the user has then been shown.
bool showingErrors(const std::function<void()>& steps)
{
    try {
        steps();
        return true;
    } catch (...) {
        ShowError(currentFailure());
        return false;
    }
}

clsDLManager& managerOf(const DownloadWindow& window)
{
    if (window.downLoadManager() == nullptr)
        throw PlatformFailure(FailureNumber::ObjectNotSet);
    return *window.downLoadManager();
}

// "COM1:" of "COM1: (unavailable)"; other text as it stands.
QString portNameOf(const QString& entry)
{
    const qsizetype colon = entry.indexOf(u':');
    return colon < 0 ? entry : entry.left(colon + 1);
}

} // namespace

ButtonOperations::ButtonOperations(std::weak_ptr<DownloadWindow> window, const Platform& platform,
                                   IFileDialogs& dialogs, IHelpViewer& helpViewer)
    : m_window(std::move(window)), m_platform(platform),
      m_files(std::make_shared<FileChoice>(platform.settings, dialogs)),
      m_help(helpViewer, [this](const QString& text) {
          // A message box would hold up the conversation with the radio.
          const auto held = m_window.lock();
          if (held && operationRuns())
              held->showNotice(text);
          else
              m_platform.messages.show(text, MessageKind::Information);
      })
{
}

ButtonOperations::WindowPointer ButtonOperations::idleWindow() const
{
    const auto window = m_window.lock();
    return window && !window->busy() && !operationRuns() ? window : nullptr;
}

void ButtonOperations::ReportConfiguration()
{
    runBusy([](clsDLManager& manager) {
        QString files;
        manager.ReportConfigurations(files);
    });
}

void ButtonOperations::EraseConfiguration()
{
    const auto window = m_window.lock();
    if (!window)
        return;
    const QString marked = window->configurations().eraseList();
    runBusy([&marked](clsDLManager& manager) {
        QString files;
        manager.EraseSelected(marked, files);
    });
}

void ButtonOperations::runBusy(const std::function<void(clsDLManager&)>& operation)
{
    const WindowPointer window = idleWindow();
    if (!window)
        return;
    window->settlePort();
    window->setBusy(true);
    window->EnableControls(false);
    showingErrors([&] { operation(managerOf(*window)); });
    window->EnableControls(true);
    window->setBusy(false);
}

void ButtonOperations::Download()
{
    startDownload([this](DownloadWindow& window) {
        m_files->SelectDownloadFile(window, [weak = weak_from_this()](const QString& strFileName) {
            if (const auto self = weak.lock())
                self->downloadChosen(strFileName);
        });
    });
}

void ButtonOperations::ChooseFiles()
{
    const WindowPointer window = idleWindow();
    if (!window)
        return;
    m_files->SelectDownloadFile(*window, [weak = weak_from_this()](const QString& strFileName) {
        const auto self = weak.lock();
        if (self && !strFileName.isEmpty())
            self->runBusy([&](clsDLManager& manager) { manager.LoadFiles(strFileName); });
    });
}

void ButtonOperations::DownloadFiles(const QStringList& paths)
{
    startDownload([&](DownloadWindow&) { downloadChosen(fileListText(paths)); });
}

void ButtonOperations::startDownload(const std::function<void(DownloadWindow&)>& chooseFiles)
{
    const WindowPointer window = idleWindow();
    if (!window)
        return;
    window->settlePort();
    if (!portCanBeOpened(*window))
        return;
    window->setBusy(true);
    window->EnableControls(false);
    const bool started = showingErrors([&] {
        if (const auto log = logState().download)
            log->OpenLogFile(QString::number(window->comSerialPort()->commPort()));
        chooseFiles(*window);
    });
    if (!started)
        finishDownload(*window, 0);
}

bool ButtonOperations::portCanBeOpened(DownloadWindow& window) const
{
    if (PortAvailable(m_platform.ports, portNameOf(window.portText())))
        return true;
    lastError().set(Code::PortInUse);
    window.refuseDownload();
    return false;
}

// No name: nothing was chosen, which the status line tells.
void ButtonOperations::downloadChosen(const QString& strFileName)
{
    const auto window = m_window.lock();
    if (!window)
        return;
    std::int16_t result = 0;
    showingErrors([&] {
        if (strFileName.isEmpty() || managerOf(*window).LoadFiles(strFileName) != 0)
            return;
        QString report;
        result = managerOf(*window).DownLoad(report);
    });
    finishDownload(*window, result);
}

void ButtonOperations::finishDownload(DownloadWindow& window, std::int16_t result)
{
    window.EnableControls(true);
    const clsDLManager* manager = window.downLoadManager();
    if (result == 0 || manager == nullptr || !manager->filesLeftOver()) {
        window.setBusy(false);
        return;
    }
    const QString report = formatMessage(static_cast<std::int32_t>(Code::FilesNotDownloaded));
    window.showFailureReport(report, [weak = window.weak_from_this()] {
        if (const auto held = weak.lock())
            held->setBusy(false);
    });
}

void ButtonOperations::SaveDetails()
{
    const auto window = m_window.lock();
    if (!window)
        return;
    showingErrors([&] {
        m_files->SelectExportFile(*window, [weak = weak_from_this()](const QString& strFileName) {
            const auto self = weak.lock();
            const auto held = self ? self->m_window.lock() : nullptr;
            if (held && !strFileName.isEmpty())
                self->writeDetails(*held, strFileName);
        });
    });
}

void ButtonOperations::writeDetails(DownloadWindow& window, const QString& strFileName) const
{
    const RunningOutcome outcome;
    if (!WriteDetailsFile(m_platform.files, window, strFileName))
        return;
    lastError().clear();
    window.setPassingStatus({});
}

void ButtonOperations::Help(std::uintptr_t windowHandle)
{
    const QString file = HelpFilePath(m_platform.program);
    m_help.setHelpFile(file);
    m_help.HHDisplayContents(windowHandle, helpContext, file);
}

} // namespace fldc
