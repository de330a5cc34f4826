#include "platform/PlatformFailure.h"
#include "platform/qt/display/FileDialogs.h"
#include "platform/qt/display/HelpViewer.h"

#include <QApplication>
#include <QFile>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPointer>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

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

TEST(FileDialogsTest, SeveralExistingFilesCanBeChosen)
{
    const QTemporaryDir folder;
    const QStringList paths{folder.filePath(QStringLiteral("a.srec")),
                            folder.filePath(QStringLiteral("b.srec"))};
    for (const QString& path : paths)
        ASSERT_TRUE(QFile(path).open(QIODevice::WriteOnly));
    std::vector<std::optional<QStringList>> answers;
    FileDialogs dialogs;
    // The text that the program keeps has `\` between folders.
    dialogs.chooseFilesToOpen(
        {QString(paths.at(0)).replace(u'/', u'\\'), QString::fromUtf16(filter)},
        [&](const auto& answer) { answers.push_back(answer); });
    QFileDialog* dialog = shownDialog();
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(dialog->selectedFiles(), QStringList(paths.at(0)));
    EXPECT_EQ(dialog->fileMode(), QFileDialog::ExistingFiles);
    EXPECT_EQ(dialog->nameFilters(), (QStringList{QStringLiteral("S records (*.srec *.s1)"),
                                                  QStringLiteral("All files (*)")}));
    dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))
        ->setText(QStringLiteral("\"a.srec\" \"b.srec\""));
    const QPointer<QFileDialog> alive(dialog);
    QMetaObject::invokeMethod(dialog, "accept");
    EXPECT_TRUE(answers.empty()) << "the dialog is still at work";
    EXPECT_TRUE(QTest::qWaitFor([&] { return alive.isNull() && !answers.empty(); }));
    ASSERT_EQ(answers.size(), 1U);
    EXPECT_EQ(answers.at(0), paths);
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
    HelpViewer viewer;
    try {
        viewer.displayContents(QStringLiteral("C:\\book.chm"));
        ADD_FAILURE() << "there is no viewer";
    } catch (const PlatformFailure& failure) {
        EXPECT_EQ(failure.number(), 53);
    }

    const QString arguments = folder.filePath(QStringLiteral("arguments"));
    QFile program(folder.filePath(QStringLiteral("xchm")));
    ASSERT_TRUE(program.open(QIODevice::WriteOnly));
    program.write("#!/bin/sh\necho \"$@\" >>" + arguments.toLocal8Bit() + "\n");
    program.setPermissions(QFile::ReadOwner | QFile::ExeOwner);
    program.close();
    viewer.displayContents(QStringLiteral("\\help\\my book.chm"));
    viewer.displayTopic(0, QStringLiteral("\\help\\my book.chm"), 2368);
    const auto started = [&] {
        QFile file(arguments);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    };
    EXPECT_TRUE(QTest::qWaitFor([&] { return !started().isEmpty(); }));
    EXPECT_EQ(started(), "-c 2368 /help/my book.chm\n");
    qputenv("PATH", path);
}

} // namespace
} // namespace fldc
