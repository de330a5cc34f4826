#include "app/Program.h"

#include "app/StartUp.h"
#include "automation/AutomationServer.h"
#include "manager/clsDLManager.h"
#include "platform/qt/ProgramInfo.h"
#include "platform/qt/SignalWatch.h"
#include "ui/frmDownload.h"
#include "ui/frmIcon.h"

#include <QApplication>

#include <unistd.h>

namespace fldc {

Program::Program(bool onTerminal)
    : m_desktopMessages(ProgramInfo().title()),
      m_messages(m_desktopMessages, m_terminalMessages, {[this] { return windowVisible(); }}),
      m_errorBox(m_messages), m_qtPlatform(m_messages), m_waitDialogs(ProgramInfo().title()),
      m_windows(m_qtPlatform.platform(),
                frmDownload::factory(m_qtPlatform.platform(), m_fileDialogs, m_helpViewer),
                [this](const std::shared_ptr<DownloadWindow>& window) { watch(window); })
{
    frmIcon::useForApplication();
    if (onTerminal && isatty(STDERR_FILENO) != 0)
        m_terminal = std::make_unique<TerminalProgress>(STDERR_FILENO);
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
                    [this](clsDLManager& manager) { watch(manager); });
    const SignalWatch signalWatch([&startUp] {
        startUp.interrupt();
        QApplication::quit();
    });
    const std::optional<int> exitCode = startUp.run(commandLine);
    return exitCode ? *exitCode : QApplication::exec();
}

int Program::runAutomation()
{
    QApplication::setQuitOnLastWindowClosed(false);
    AutomationServer server(m_qtPlatform.platform(), m_windows, m_waitDialogs);
    const SignalWatch signalWatch([&server] { server.interrupt(); });
    return server.run();
}

void Program::watch(const std::shared_ptr<DownloadWindow>& window)
{
    m_latestWindow = window;
    if (m_terminal)
        m_terminal->watch(window);
}

void Program::watch(clsDLManager& manager)
{
    if (m_terminal)
        QObject::connect(&manager, &clsDLManager::PowerCycleRequired, &manager,
                         [this] { m_terminal->askForPowerCycle(); });
}

bool Program::windowVisible() const
{
    const auto window = m_latestWindow.lock();
    return window && window->isVisible();
}

} // namespace fldc
