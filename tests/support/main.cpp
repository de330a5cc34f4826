#include <QCoreApplication>

#include <gmock/gmock.h>

namespace {

/// A library that is used wrongly says so in a warning and goes on.
void failOnWarnings(QtMsgType type, const QMessageLogContext& /*context*/, const QString& text)
{
    if (type != QtDebugMsg && type != QtInfoMsg)
        ADD_FAILURE() << qPrintable(text);
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    testing::InitGoogleMock(&argc, argv);
    qInstallMessageHandler(failOnWarnings);
    return RUN_ALL_TESTS();
}
