#include "fldc/Program.h"
#include "fldc/process/StandardDescriptors.h"

#include <QCoreApplication>

#include <cstdio>
#include <cstdlib>

namespace {

// Qt's own remarks (of a locale that is not UTF-8, say) are not for the people at the terminal.
void keepSilent(QtMsgType /*type*/, const QMessageLogContext& /*context*/, const QString& /*text*/)
{
}

} // namespace

int main(int argc, char** argv)
{
    fldc::cli::openStandardDescriptors();
    fldc::cli::HeldSignals held;
    try {
        const std::vector<std::string> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
        qInstallMessageHandler(keepSilent);
        const QCoreApplication application(argc, argv);
        return fldc::cli::Program(arguments).run(held);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "fldc: %s\n", failure.what());
        return static_cast<int>(fldc::Exit::Unexpected);
    }
}
