#include <QApplication>

#include <gmock/gmock.h>

// Without a display Qt would abort the run, and the listing of its tests.
int main(int argc, char** argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
