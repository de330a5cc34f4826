#include "ui/frmIcon.h"
#include "ui/frmReportDialog.h"
#include "ui/frmWait.h"

#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

namespace fldc {
namespace {

TEST(WaitDialogTest, ACancelStaysReadableUntilItIsShownAgain)
{
    frmWait dialog(QStringLiteral("Title"));
    EXPECT_EQ(dialog.size(), QSize(248, 89));
    for (int giveUp = 0; giveUp < 3; ++giveUp) {
        dialog.Show();
        dialog.SetMessage(QStringLiteral("Please Power Cycle the Radio to continue ..."));
        EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Title"));
        EXPECT_FALSE(dialog.isModal());
        EXPECT_FALSE(dialog.IsCancelled());
        if (giveUp == 0)
            QTest::mouseClick(dialog.findChild<QPushButton*>(QStringLiteral("cmdCancel")),
                              Qt::LeftButton);
        else if (giveUp == 1)
            QTest::keyClick(&dialog, Qt::Key_Escape);
        else
            dialog.close();
        EXPECT_FALSE(dialog.isVisible());
        dialog.Hide();
        EXPECT_TRUE(dialog.IsCancelled());
        EXPECT_TRUE(dialog.IsCancelled());
    }
    dialog.Show();
    dialog.Hide();
    EXPECT_FALSE(dialog.IsCancelled()) << "hidden by the program";
}

TEST(WaitDialogTest, BothMessagesFitOnTwoLines)
{
    frmWait dialog(QStringLiteral("Title"));
    auto* label = dialog.findChild<QLabel*>(QStringLiteral("lblMessage"));
    EXPECT_EQ(label->geometry(), QRect(8, 16, 233, 33));
    EXPECT_EQ(dialog.findChild<QPushButton*>()->geometry(), QRect(80, 56, 89, 25));
    dialog.SetMessage(
        QStringLiteral("Please hold the F1 Key and Power Cycle the Radio to continue ..."));
    EXPECT_LE(label->heightForWidth(label->width()), label->height());
}

TEST(ReportDialogTest, TheLayoutFollowsTheSize)
{
    frmReportDialog dialog(nullptr);
    dialog.setReport(QStringLiteral("Text:\r\nJHA2F\r\n"));
    dialog.show();
    auto* box = dialog.findChild<QPlainTextEdit*>(QStringLiteral("txtReport"));
    auto* button = dialog.findChild<QPushButton*>(QStringLiteral("cmdOk"));
    EXPECT_EQ(box->toPlainText(), QStringLiteral("Text:\nJHA2F\n"));
    EXPECT_TRUE(box->isReadOnly());
    // Client sizes in pixels; the frame that the layout counts with is 8 by 27.
    const std::tuple<QSize, QSize, QRect, QRect> cases[]{
        {{313, 207}, {313, 207}, {240, 176, 65, 25}, {8, 8, 297, 161}},
        {{125, 106}, {192, 173}, {119, 142, 65, 25}, {8, 8, 176, 127}}, // 2000 by 2000 twips
        {{512, 373}, {512, 373}, {439, 342, 65, 25}, {8, 8, 496, 327}},
    };
    for (const auto& [asked, size, ok, text] : cases) {
        dialog.resize(asked);
        EXPECT_EQ(dialog.size(), size);
        EXPECT_EQ(button->geometry(), ok);
        EXPECT_EQ(box->geometry(), text);
        EXPECT_TRUE(dialog.rect().contains(ok));
    }
    QTest::mouseClick(button, Qt::LeftButton);
    EXPECT_FALSE(dialog.isVisible());
}

TEST(IconTest, EveryPictureIsBuiltIn)
{
    for (const int size : {16, 32, 48})
        EXPECT_EQ(frmIcon::icon().pixmap(size).size(), QSize(size, size));
    for (const char* name : {"help", "download", "wait", "report", "ticked", "unticked"})
        EXPECT_FALSE(frmIcon::picture(QString::fromLatin1(name)).pixmap(13).isNull()) << name;
}

} // namespace
} // namespace fldc
