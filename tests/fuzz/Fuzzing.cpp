#include "Fuzzing.h"

#include <QCoreApplication>

// Called once, before the first input.
extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    static const QCoreApplication application(*argc, *argv);
    testing::GTEST_FLAG(break_on_failure) = true;
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& text) {
        if (type != QtDebugMsg && type != QtInfoMsg)
            ADD_FAILURE() << qPrintable(text);
    });
    return 0;
}
