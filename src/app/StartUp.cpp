#include "app/StartUp.h"

#include "manager/clsDLManager.h"
#include "platform/IMessageBox.h"
#include "platform/PlatformFailure.h"

#include <cstdio>

namespace fldc {

namespace {

constexpr int exitCompleted = 0;
constexpr int exitFailed = 1;

} // namespace

StartUp::StartUp(const Platform& platform, IDownloadWindowFactory& windows,
                 IWaitDialogFactory& dialogs, ManagerWatcher watch)
    : m_platform(platform), m_windows(windows), m_dialogs(dialogs), m_watch(std::move(watch))
{
}

StartUp::~StartUp() = default;

std::optional<int> StartUp::run(const QString& text)
{
    try {
        m_manager = std::make_unique<clsDLManager>(m_platform, m_windows, m_dialogs);
        m_watch(*m_manager);
        if (text.isEmpty()) {
            m_manager->SetUIMode(true);
            return std::nullopt;
        }
        return runSwitches(ParseCommandLine(text));
    } catch (...) {
        // No box: a production line has nobody to close it.
        std::fprintf(stderr, "rv4100_fldc: %s\n", qUtf8Printable(currentFailure().description()));
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
    if (SwitchPresent(switches, u'p'))
        m_manager->SetPort(QString::number(switchNumber(switches, u'p')), false);
    m_manager->SetUIMode(SwitchPresent(switches, u'g'));
    m_manager->LoadFilesEx(switches.value(u'f'), QStringLiteral(","));
    stopIfInterrupted();
    QString report;
    m_manager->DownLoad(report);
    stopIfInterrupted();
    m_manager->SetUIMode(false);
    m_manager->ShutDownUiLessMode();
}

void StartUp::interrupt()
{
    m_interrupted = true;
    if (m_manager)
        m_manager->cancelOperation();
}

void StartUp::stopIfInterrupted() const
{
    if (m_interrupted)
        throw PlatformFailure(FailureNumber::Internal, QStringLiteral("Interrupted"));
}

} // namespace fldc
