#include "ui/frmIcon.h"
#include "ui/frmReportDialog.h"
#include "ui/frmWait.h"

#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

namespace fldc {
namespace {

TEST(WaitDialogTest, ACancelStaysReadableUntilItIsShownAgain)
{
    frmWait dialog(QStringLiteral("Title"));
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

TEST(ReportDialogTest, TheLayoutFollowsTheSize)
{
    frmReportDialog dialog(nullptr);
    dialog.setReport(QStringLiteral("Text:\r\nJHA2F\r\n"));
    dialog.show();
    auto* box = dialog.findChild<QPlainTextEdit*>(QStringLiteral("txtReport"));
    auto* button = dialog.findChild<QPushButton*>(QStringLiteral("cmdOk"));
    EXPECT_EQ(box->toPlainText(), QStringLiteral("Text:\nJHA2F\n"));
    EXPECT_TRUE(box->isReadOnly());
    for (const QSize size : {QSize(313, 207), QSize(125, 106), QSize(512, 373)}) {
        dialog.resize(size);
        const QRect inside = dialog.rect().adjusted(8, 8, -8, -6);
        EXPECT_TRUE(inside.contains(button->geometry()) && inside.contains(box->geometry()));
        EXPECT_LT(box->geometry().bottom(), button->y());
        EXPECT_LE(dialog.height() - button->geometry().bottom(), 8) << "they grow with it";
    }
    QTest::mouseClick(button, Qt::LeftButton);
    EXPECT_FALSE(dialog.isVisible());
}

} // namespace
} // namespace fldc
