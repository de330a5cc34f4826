#include "platform/PlatformFailure.h"
#include "platform/qt/display/FileDialogs.h"
#include "platform/qt/display/HelpViewer.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace fldc {
namespace {

constexpr auto filter = u"S records|*.srec;*.s1|All files|*.*";

QFileDialog* shownDialog()
{
    for (QWidget* each : QApplication::topLevelWidgets()) {
        if (each->objectName() == u"cdgFileToDownload" && each->isVisible())
            return qobject_cast<QFileDialog*>(each);
    }
    return nullptr;
}

TEST(FileDialogsTest, SavingAsksBeforeAFileIsReplacedAndCancelIsAnAnswer)
{
    FileDialogs dialogs;
    bool cancelled = false;
    dialogs.chooseFileToSave({QString(), QString::fromUtf16(filter)},
                             [&](const auto& answer) { cancelled = !answer; });
    QFileDialog* dialog = shownDialog();
    ASSERT_NE(dialog, nullptr);
    EXPECT_FALSE(dialog->testOption(QFileDialog::DontConfirmOverwrite));
    EXPECT_EQ(dialog->defaultSuffix(), QString()) << "several endings";
    dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))
        ->setText(QStringLiteral("/no/such/folder/a.csv"));
    QMetaObject::invokeMethod(dialog, "accept");
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_NE(dialog->findChild<QMessageBox*>(), nullptr) << "told in the dialog";
    bool opened = false;
    dialogs.chooseFilesToOpen({QString(), QString::fromUtf16(filter)},
                              [&](const auto&) { opened = true; });
    EXPECT_FALSE(dialog->isVisible()) << "a download that waits for its files must get an answer";
    EXPECT_TRUE(QTest::qWaitFor([&] { return cancelled; }));
    shownDialog()->reject();
    EXPECT_TRUE(QTest::qWaitFor([&] { return opened; }));
}

TEST(HelpViewerTest, ContentsAndTopicAreOneStartOfTheViewer)
{
    const QTemporaryDir folder;
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", folder.path().toLocal8Bit());
    QUrl page;
    HelpViewer viewer([&](const QUrl& url) {
        page = url;
        return !url.isEmpty();
    });
    try {
        viewer.displayContents(QStringLiteral("C:\\book.chm"));
        ADD_FAILURE() << "there is no viewer";
    } catch (const PlatformFailure& failure) {
        EXPECT_EQ(failure.number(), 53);
    }

    ASSERT_TRUE(QDir(folder.path()).mkdir(QStringLiteral("book")));
    ASSERT_TRUE(
        QFile(folder.filePath(QStringLiteral("book/index.html"))).open(QIODevice::WriteOnly));
    viewer.displayContents(folder.filePath(QStringLiteral("book.chm")));
    viewer.displayTopic(0, folder.filePath(QStringLiteral("book.chm")), 2368);
    EXPECT_EQ(page, QUrl::fromLocalFile(folder.filePath(QStringLiteral("book/window.html"))));

    const QString arguments = folder.filePath(QStringLiteral("arguments"));
    const QString gate = folder.filePath(QStringLiteral("gate"));
    ASSERT_EQ(::mkfifo(gate.toLocal8Bit().constData(), 0600), 0);
    QFile program(folder.filePath(QStringLiteral("xchm")));
    ASSERT_TRUE(program.open(QIODevice::WriteOnly));
    program.write("#!/bin/sh\necho \"$@\" >>" + arguments.toLocal8Bit() + "\nread line <" +
                  gate.toLocal8Bit() + "\n");
    program.setPermissions(QFile::ReadOwner | QFile::ExeOwner);
    program.close();
    viewer.displayContents(QStringLiteral("\\help\\my book.chm"));
    viewer.displayTopic(0, QStringLiteral("\\help\\my book.chm"), 2368);
    const auto started = [&] {
        QFile file(arguments);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    };
    EXPECT_TRUE(QTest::qWaitFor([&] { return !started().isEmpty(); }));
    viewer.displayContents(QStringLiteral("\\help\\my book.chm"));
    QTest::qWait(50);
    EXPECT_EQ(started(), "-c 2368 /help/my book.chm\n") << "one viewer while it lives";
    QFile open(gate);
    EXPECT_TRUE(open.open(QIODevice::WriteOnly));
    qputenv("PATH", path);
}

} // namespace
} // namespace fldc
