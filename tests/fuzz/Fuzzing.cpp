#include "Fuzzing.h"

#include <QCoreApplication>

#include <cstdlib>

namespace {

struct Ender : testing::EmptyTestEventListener {
    void OnTestPartResult(const testing::TestPartResult& result) override
    {
        if (result.failed())
            std::abort();
    }
};

} // namespace

// Called once, before the first input.
extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    static const QCoreApplication application(*argc, *argv);
    testing::UnitTest::GetInstance()->listeners().Append(new Ender);
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& text) {
        if (type != QtDebugMsg && type != QtInfoMsg)
            ADD_FAILURE() << qPrintable(text);
    });
    return 0;
}
