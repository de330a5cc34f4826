#include "app/StartUp.h"
#include "app/TerminalProgress.h"
#include "app/WindowFactory.h"
#include "manager/clsDLManager.h"
#include "platform/PlatformFailure.h"
#include "platform/ShowError.h"
#include "platform/qt/ProgramInfo.h"
#include "platform/qt/QtPlatform.h"
#include "platform/qt/SignalWatch.h"
#include "platform/qt/TerminalMessages.h"
#include "platform/qt/display/DesktopMessages.h"
#include "platform/qt/display/MessageChooser.h"
#include "platform/qt/display/QtPlatformChoice.h"
#include "protocol/IWaitDialog.h"

#include <QApplication>

#include <cstdio>
#include <memory>
#include <unistd.h>

namespace fldc {
namespace {

class WaitDialogs final : public IWaitDialogFactory {
public:
    [[nodiscard]] std::unique_ptr<IWaitDialog> createWaitDialog() override { return nullptr; }
};

// The run's state on the terminal, when the standard error output is one; else it stays silent.
std::unique_ptr<TerminalProgress> terminalFor(const QString& commandLine)
{
    if (commandLine.isEmpty() || isatty(STDERR_FILENO) == 0)
        return nullptr;
    return std::make_unique<TerminalProgress>(STDERR_FILENO);
}

int runProgram(const QString& commandLine)
{
    std::weak_ptr<DownloadWindow> latestWindow;
    const auto windowVisible = [&latestWindow] {
        const auto window = latestWindow.lock();
        return window && window->isVisible();
    };
    DesktopMessages desktopMessages(ProgramInfo().title());
    TerminalMessages terminalMessages;
    MessageChooser messages(desktopMessages, terminalMessages, {windowVisible});
    const ErrorBoxScope errorBox(messages);
    QtPlatform qtPlatform(messages);
    const Platform& platform = qtPlatform.platform();

    const std::unique_ptr<TerminalProgress> terminal = terminalFor(commandLine);
    WindowFactory windows(platform, {}, [&](const std::shared_ptr<DownloadWindow>& window) {
        latestWindow = window;
        if (terminal)
            terminal->watch(window);
    });
    WaitDialogs waitDialogs;
    StartUp startUp(platform, windows, waitDialogs, [&](clsDLManager& manager) {
        if (terminal)
            QObject::connect(&manager, &clsDLManager::PowerCycleRequired, &manager,
                             [&terminal] { terminal->askForPowerCycle(); });
    });
    const SignalWatch signalWatch([&] {
        startUp.interrupt();
        QCoreApplication::quit();
    });
    const std::optional<int> exitCode = startUp.run(commandLine);
    return exitCode ? *exitCode : QApplication::exec();
}

} // namespace
} // namespace fldc

int main(int argc, char** argv)
{
    try {
        fldc::chooseQtPlatform();
        const QApplication application(argc, argv);
        return fldc::runProgram(QCoreApplication::arguments().sliced(1).join(u' '));
    } catch (...) {
        std::fprintf(stderr, "rv4100_fldc: %s\n",
                     qUtf8Printable(fldc::currentFailure().description()));
        return 1;
    }
}
