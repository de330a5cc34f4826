#include "app/StartUp.h"

#include "manager/clsDLManager.h"
#include "platform/IEvents.h"
#include "platform/IMessageBox.h"
#include "platform/PlatformFailure.h"

#include <utility>

namespace fldc {

namespace {

constexpr int exitCompleted = 0;
constexpr int exitFailed = 1;

} // namespace

StartUp::StartUp(const Platform& platform, IDownloadWindowFactory& windows,
                 IWaitDialogFactory& dialogs, Listener listener)
    : m_platform(platform), m_windows(windows), m_dialogs(dialogs), m_listener(std::move(listener))
{
}

StartUp::~StartUp() = default;

std::optional<int> StartUp::run(const QString& text)
{
    try {
        m_manager = std::make_unique<clsDLManager>(m_platform, m_windows, m_dialogs);
        m_listener.managerMade(*m_manager);
        if (m_interrupted)
            m_manager->endOperations();
        if (text.isEmpty()) {
            m_manager->SetUIMode(true);
            return std::nullopt;
        }
        return runSwitches(ParseCommandLine(text));
    } catch (...) {
        // No box: a production line has nobody to close it.
        m_listener.failed(currentFailure().description());
    }
    if (m_manager) {
        m_manager->SetUIMode(false);
        m_manager->ShutDownUiLessMode();
    }
    return exitFailed;
}

int StartUp::runSwitches(const SwitchTable& switches)
{
    const bool asked = SwitchPresent(switches, u'?');
    const bool incomplete = !SwitchPresent(switches, u'f') ||
                            (SwitchPresent(switches, u'g') && !SwitchPresent(switches, u'r'));
    if (asked || incomplete) {
        m_platform.messages.show(usageText(), MessageKind::Information);
        stopIfInterrupted();
        return asked ? exitCompleted : exitFailed;
    }
    runDownload(switches);
    return exitCompleted;
}

// The outcome of load and download is the manager's last error, not the exit code.
void StartUp::runDownload(const SwitchTable& switches)
{
    if (SwitchPresent(switches, u'r'))
        m_manager->setRadioType(static_cast<enmRadioType>(switchNumber(switches, u'r')));
    const bool portChosen = choosePort(switches);
    m_manager->SetUIMode(SwitchPresent(switches, u'g'));
    if (portChosen)
        loadAndDownload(switches.value(u'f'));
    stopIfInterrupted();
    m_manager->SetUIMode(false);
    m_manager->ShutDownUiLessMode();
}

// False when a port was named that can't be chosen. The manager keeps another one then, and what is
// written there would reach the wrong radio.
bool StartUp::choosePort(const SwitchTable& switches)
{
    if (!SwitchPresent(switches, u'p'))
        return true;
    return m_manager->SetPort(QString::number(switchNumber(switches, u'p')), false) == 0;
}

void StartUp::loadAndDownload(const QString& files)
{
    stopIfInterrupted();
    m_manager->LoadFilesEx(files, QStringLiteral(","));
    stopIfInterrupted();
    QString report;
    m_manager->DownLoad(report);
}

void StartUp::interrupt()
{
    m_interrupted = true;
    if (m_manager)
        m_manager->endOperations();
}

// Nothing serves events while files are read: an interruption may be waiting.
void StartUp::stopIfInterrupted() const
{
    m_platform.events.processPending();
    if (m_interrupted)
        throw PlatformFailure(FailureNumber::Internal, QStringLiteral("Interrupted"));
}

} // namespace fldc
