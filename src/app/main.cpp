#include "app/Program.h"
#include "platform/PlatformFailure.h"
#include "platform/qt/display/EnglishOnly.h"
#include "platform/qt/display/MessageChooser.h"
#include "platform/qt/display/QtPlatformChoice.h"

#include <QApplication>

#include <cstdio>

namespace {

int run(const QString& commandLine)
{
    if (commandLine == u"--automation")
        return fldc::Program(false).runAutomation();
    if (commandLine.isEmpty() && !fldc::displayPresent()) {
        std::fputs(
            "rv4100_fldc: there is no display for the window. Without one, a download is run "
            "with the switches /f, /p and /r (/? explains them), and --automation serves "
            "other programs.\n",
            stderr);
        return 1;
    }
    if (commandLine.isEmpty())
        return fldc::Program(false).runWindow();
    return fldc::Program(true).runSwitches(commandLine);
}

} // namespace

int main(int argc, char** argv)
{
    try {
        fldc::speakEnglishOnly();
        fldc::chooseQtPlatform();
        if (argc == 2 && QLatin1StringView(argv[1]) == fldc::RunHistory::deliveryArgument) {
            const QCoreApplication application(argc, argv);
            return fldc::RunHistory::deliver();
        }
        const QApplication application(argc, argv);
        return run(QCoreApplication::arguments().sliced(1).join(u' '));
    } catch (...) {
        std::fprintf(stderr, "rv4100_fldc: %s\n",
                     qUtf8Printable(fldc::currentFailure().description()));
        return 1;
    }
}
