#include "WindowTest.h"

#include "shared/LastError.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QHeaderView>
#include <QLineEdit>
#include <QProgressBar>
#include <QTest>
#include <QTreeWidget>
#include <QWheelEvent>

#include <array>

namespace fldc {
namespace {

using MainWindowTest = WindowTest;

std::array<int, 5> columnWidths(const QTreeWidget& list)
{
    std::array<int, 5> widths{};
    for (int i = 0; i < 5; ++i)
        widths.at(static_cast<std::size_t>(i)) = list.columnWidth(i);
    return widths;
}

TEST_F(MainWindowTest, EveryControlIsThereWholeAndInTabOrder)
{
    start();
    for (const auto* each : view->findChildren<QAbstractButton*>())
        EXPECT_TRUE(!each->isVisible() || each->visibleRegion().boundingRect() == each->rect())
            << qPrintable(each->objectName()) << ": covered or outside";
    QStringList order;
    for (QWidget* each = control("chkAccessLevel");;) {
        if (each->focusPolicy() & Qt::TabFocus && each->isVisible() &&
            !each->objectName().startsWith(u"qt_"))
            order.append(each->objectName());
        each = each->nextInFocusChain();
        if (each == control("chkAccessLevel"))
            break;
    }
    order.removeAll(QString());
    EXPECT_EQ(order.join(u' '),
              QStringLiteral("chkAccessLevel cboPort cboBaudRate cmdConfig cmdErase cmdDownload "
                             "cmdHelp ListView1 cmdSaveDetails txtCurrentDownload"));
    EXPECT_EQ(view->minimumSize(), view->maximumSize());
    EXPECT_TRUE(control<QLineEdit>("txtCurrentDownload")->isReadOnly());
}

TEST_F(MainWindowTest, ItFollowsTheDesktopsFont)
{
    start();
    const QSize size = view->size();
    const QFont before = QApplication::font();
    QFont larger = before;
    larger.setPointSizeF(1.2 * 9);
    QApplication::setFont(larger);
    EXPECT_TRUE(QTest::qWaitFor([&] { return view->width() > size.width(); }));
    EXPECT_GT(control("panelTag")->font().pointSizeF(), 1.1 * 8.25);
    for (const auto* each : view->findChildren<QAbstractButton*>())
        EXPECT_TRUE(!each->isVisible() || each->visibleRegion().boundingRect() == each->rect())
            << qPrintable(each->objectName()) << ": covered or outside";
    QApplication::setFont(before);
    EXPECT_TRUE(QTest::qWaitFor([&] { return view->size() == size; }));
}

TEST_F(MainWindowTest, APortIsChosenOncePerChange)
{
    start();
    auto* combo = control<QComboBox>("cboPort");
    int before = portChoices();
    const auto added = [&] { return portChoices() - std::exchange(before, portChoices()); };
    EXPECT_GT(before, 0);

    QTest::keyClick(combo, Qt::Key_Down);
    EXPECT_EQ(added(), 1);
    EXPECT_EQ(machine.line().commPort(), 7);
    Q_EMIT combo->activated(1);
    EXPECT_EQ(added(), 0) << "the entry that is chosen already";
    manager->SetPort(QStringLiteral("1"), true);
    EXPECT_EQ(added(), 2) << "the call itself, and the list that follows it";
    EXPECT_EQ(combo->currentText(), QStringLiteral("COM1:"));
    manager->SetPort(QStringLiteral("COM1:"), true);
    EXPECT_EQ(added(), 1) << "the list stands there already";

    combo->lineEdit()->selectAll();
    QTest::keyClicks(combo->lineEdit(), QStringLiteral("COM7:"));
    QTest::keyClick(combo->lineEdit(), Qt::Key_Return);
    control("cmdDownload")->setFocus();
    EXPECT_EQ(added(), 0) << "typing chooses nothing";
    EXPECT_EQ(window.lock()->portIndex(), -1);
    EXPECT_EQ(machine.line().commPort(), 1);
    Q_EMIT combo->activated(0);
    EXPECT_EQ(added(), 1) << "an entry chosen after typing";
}

TEST_F(MainWindowTest, ATypedSpeedSelectsNoEntry)
{
    start();
    auto* combo = control<QComboBox>("cboBaudRate");
    for (const char* text : {"4711", "19200"}) {
        combo->lineEdit()->selectAll();
        QTest::keyClicks(combo, QString::fromLatin1(text)); // it has the focus, not its line
        EXPECT_EQ(window.lock()->baudRateIndex(), -1) << text;
        EXPECT_EQ(combo->currentText(), QString::fromLatin1(text));
    }
    QTest::keyClick(combo, Qt::Key_E, Qt::AltModifier);
    EXPECT_EQ(combo->currentText(), QStringLiteral("19200")) << "meant for a button";
    manager->SetBaudRate(19200);
    control("cboPort")->setFocus();
    QWheelEvent wheel({5, 5}, combo->mapToGlobal(QPointF(5, 5)), {}, {0, -120}, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(combo, &wheel);
    EXPECT_EQ(combo->currentIndex(), 2) << "and the wheel, meant for nothing";
    EXPECT_EQ(combo->currentText(), QStringLiteral("19200"));
    QTest::keyClick(combo, Qt::Key_Down);
    EXPECT_EQ(window.lock()->baudRateIndex(), 3);
}

TEST_F(MainWindowTest, ColumnsFollowTheReportAndTheUser)
{
    start();
    auto* list = control<QTreeWidget>("ListView1");
    EXPECT_EQ(columnWidths(*list), (std::array{120, 187, 100, 100, 38}));
    fill({QStringLiteral("SHA2A"), QStringLiteral("JVA1G")}, "00");
    EXPECT_EQ(columnWidths(*list), (std::array{120, 187, 238, 0, 0}));
    fill({QStringLiteral("JVA1G")}, "0", 0, true);
    EXPECT_EQ(columnWidths(*list), (std::array{120, 425, 0, 0, 0}));
    fill({QStringLiteral("jVA1G"), QStringLiteral("JVA2G")}, "00");
    EXPECT_EQ(columnWidths(*list), (std::array{120, 187, 100, 100, 38}));

    list->header()->resizeSection(1, 150);
    list->resize(list->width() - 1, list->height());
    EXPECT_EQ(list->columnWidth(1), 150) << "the user's";
    fill({QStringLiteral("JVA1G")}, "0");
    EXPECT_EQ(list->columnWidth(1), 187) << "until it is filled again";
}

TEST_F(MainWindowTest, AStatusHasItsTextAndAColourThatCanBeRead)
{
    start();
    auto* list = control<QTreeWidget>("ListView1");
    for (const int number : {0, 1, 7}) {
        fill({QStringLiteral("A")}, "0", number);
        EXPECT_EQ(list->topLevelItem(0)->icon(2).isNull(), number == 0) << "not by colour alone";
        EXPECT_EQ(list->topLevelItem(0)->foreground(2).color(),
                  number == 0 ? QColor(0, 0, 0) : QColor(255, 0, 0));
    }
}

TEST_F(MainWindowTest, ProgressStaysOnItsBar)
{
    start();
    for (const auto& [value, shown] : {std::pair(150, 100), {40, 40}, {-3, 0}}) {
        window.lock()->setProgressBar(static_cast<std::int16_t>(value));
        EXPECT_EQ(control<QProgressBar>("prgDownloadProgress")->value(), shown);
        EXPECT_EQ(window.lock()->progress(), shown) << "a terminal shows this";
    }
}

TEST_F(MainWindowTest, ItIsNotShownOverAModalDialog)
{
    start();
    manager->SetUIMode(false);
    QDialog modal;
    modal.setModal(true);
    modal.show();
    lastError().set(Code::PortInUse);
    EXPECT_EQ(manager->SetUIMode(true), 0);
    EXPECT_FALSE(view->isVisible());
    modal.close();
    EXPECT_EQ(manager->SetUIMode(true), 0);
    EXPECT_TRUE(view->isVisible());
}

TEST_F(MainWindowTest, ClosingReleasesTheManagersWindow)
{
    start();
    view->close();
    EXPECT_TRUE(window.expired());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(view.isNull());
    lastError().clear();
    EXPECT_EQ(manager->SetUIMode(true), 0) << "a new one";
    EXPECT_FALSE(window.expired());
}

} // namespace
} // namespace fldc
