#include "app/StartUp.h"
#include "app/TerminalProgress.h"
#include "app/WindowFactory.h"
#include "manager/clsDLManager.h"
#include "platform/ShowError.h"
#include "platform/qt/QtPlatform.h"
#include "platform/qt/SignalWatch.h"
#include "platform/qt/display/DisplayPlatform.h"

#include <QApplication>

#include <cstdio>
#include <memory>
#include <unistd.h>

namespace {

using namespace fldc;

int runProgram(QApplication& application, const QString& commandLine)
{
    const WindowFactory* windows = nullptr;
    ChosenMessages messages([&windows] { return windows != nullptr && windows->windowVisible(); });
    QtPlatform qtPlatform(messages);
    const Platform& platform = qtPlatform.platform();
    const ErrorBoxScope errorBox(messages);

    // A terminal shows how a switch-driven run goes on; anything else stays silent.
    std::unique_ptr<TerminalProgress> terminal;
    if (!commandLine.isEmpty() && isatty(STDERR_FILENO) != 0)
        terminal = std::make_unique<TerminalProgress>(STDERR_FILENO);

    WindowFactory windowFactory(platform, {}, [&terminal](std::shared_ptr<DownloadWindow> window) {
        if (terminal)
            terminal->watch(std::move(window));
    });
    windows = &windowFactory;

    const auto watchManager = [&terminal](clsDLManager& manager) {
        if (!terminal)
            return;
        QObject::connect(&manager, &clsDLManager::PowerCycleRequired, &manager,
                         [&terminal] { terminal->printLine(powerCycleRequest()); });
    };
    StartUp startUp(platform, windowFactory, waitDialogs, watchManager);
    const SignalWatch signalWatch([&] {
        startUp.interrupt();
        QApplication::quit();
    });
    const std::optional<int> exitCode = startUp.run(commandLine);
    return exitCode ? *exitCode : QApplication::exec();
}

} // namespace

int main(int argc, char** argv)
{
    fldc::chooseQtPlatform();
    const QApplication application(argc, argv);
    try {
        return runProgram(application, QApplication::arguments().sliced(1).join(u' '));
    } catch (...) {
        std::fprintf(stderr, "rv4100_fldc: %s\n",
                     qUtf8Printable(fldc::currentFailure().description()));
        return 1;
    }
}
