#include "app/Program.h"

#include "app/StartUp.h"
#include "automation/AutomationServer.h"
#include "manager/Operation.h"
#include "manager/clsDLManager.h"
#include "platform/qt/ProgramInfo.h"
#include "platform/qt/SignalWatch.h"
#include "shared/LastError.h"
#include "ui/desktop/ReadablePalette.h"
#include "ui/desktop/VisibleBorders.h"
#include "ui/frmDownload.h"
#include "ui/frmIcon.h"

#include <QApplication>

#include <cstdio>
#include <utility>

#include <unistd.h>

namespace fldc {

Program::Program(bool onTerminal)
    : m_desktopMessages(ProgramInfo().title()),
      m_messages(m_desktopMessages, m_terminalMessages,
                 {.windowVisible = [this] { return windowVisible(); },
                  .nobodyWaits = [this] { return m_ending || operationCancelled(); }}),
      m_errorBox(m_messages), m_qtPlatform(m_messages), m_desktopSession(ProgramInfo().title()),
      m_waitDialogs(ProgramInfo().title()),
      m_windows(m_qtPlatform.platform(),
                frmDownload::factory(m_qtPlatform.platform(), m_fileDialogs, m_helpViewer,
                                     &m_desktopSession),
                [this](const std::shared_ptr<DownloadWindow>& window) { watch(window); }),
      m_history(m_qtPlatform.platform(), [this](const QString& what) { complain(what); })
{
    frmIcon::useForApplication();
    VisibleBorders::install();
    new ReadablePalette(qApp);
    if (onTerminal && isatty(STDERR_FILENO) != 0)
        m_terminal = std::make_unique<TerminalProgress>(STDERR_FILENO);
    m_terminalMessages.setEndLine([this] {
        if (m_terminal)
            m_terminal->endLine();
    });
}

Program::~Program() = default;

int Program::runWindow()
{
    return runStartUp({});
}

int Program::runSwitches(const QString& commandLine)
{
    // The window of a run may be closed; the run goes on.
    QApplication::setQuitOnLastWindowClosed(false);
    return runStartUp(commandLine);
}

int Program::runStartUp(const QString& commandLine)
{
    StartUp startUp(m_qtPlatform.platform(), m_windows, m_waitDialogs,
                    {[this](clsDLManager& manager) { watch(manager); },
                     [this](const QString& reason) { complain(reason); }});
    const SignalWatch signalWatch([this, &startUp] { interrupt(startUp); });
    const std::optional<int> exitCode = startUp.run(commandLine);
    if (exitCode)
        return *exitCode;
    return startUp.interrupted() ? 1 : QApplication::exec();
}

// Ends what runs and what waits for the user, and the event loop behind that: not by closing the
// windows, which one with a running operation refuses. Exit code 0 is for a program that was idle.
void Program::interrupt(StartUp& startUp)
{
    const bool idle = !operationRuns() && QApplication::activeModalWidget() == nullptr;
    m_ending = true;
    startUp.interrupt();
    m_messages.dismiss();
    QApplication::exit(idle ? 0 : 1);
}

void Program::complain(const QString& reason)
{
    if (m_terminal)
        m_terminal->endLine();
    std::fprintf(stderr, "rv4100_fldc: %s\n", qUtf8Printable(reason));
    if (const auto window = m_latestWindow.lock())
        window->setRemark(reason);
    else
        m_complaint = reason;
}

int Program::runAutomation()
{
    QApplication::setQuitOnLastWindowClosed(false);
    AutomationServer server(
        m_qtPlatform.platform(), m_windows, m_waitDialogs,
        [this](clsDLManager& manager) { return m_history.listenerFor(manager); });
    const SignalWatch signalWatch([this, &server] {
        m_ending = true;
        server.interrupt();
    });
    return server.run();
}

void Program::watch(const std::shared_ptr<DownloadWindow>& window)
{
    m_latestWindow = window;
    window->setRemark(std::exchange(m_complaint, {}));
    if (m_terminal)
        m_terminal->watch(window);
}

void Program::watch(clsDLManager& manager)
{
    m_recorder = m_history.listenerFor(manager);
    if (m_recorder)
        manager.addListener(*m_recorder);
    if (!m_terminal)
        return;
    QObject::connect(&manager, &clsDLManager::PowerCycleRequired, &manager, [this, &manager] {
        m_terminal->say(powerCycleRequest(manager.upgradeState().blnF1KeyRequired));
    });
    QObject::connect(&manager, &clsDLManager::FileNotLoaded, &manager, [this](const QString& path) {
        m_terminal->say(path + QStringLiteral(": ") + statusLine({}));
    });
}

bool Program::windowVisible() const
{
    const auto window = m_latestWindow.lock();
    return window && window->isVisible();
}

} // namespace fldc
