#include "WindowTest.h"

#include "shared/LastError.h"

#include <QApplication>
#include <QComboBox>
#include <QDragEnterEvent>
#include <QMimeData>
#include <QTest>
#include <QTreeWidget>

#include <chrono>

namespace fldc {
namespace {

using namespace std::chrono_literals;
using OperationsTest = WindowTest;

constexpr auto idle = "cboPort cmdConfig cmdDownload";

QString filePath(const char* name)
{
    return QStringLiteral("/fw/") + QString::fromLatin1(name);
}

TEST_F(OperationsTest, WhileAReportRunsNothingElseStartsAndTheWindowStays)
{
    start();
    play({logOn, askForReport});
    bool seen = false;
    control("cmdConfig")->setFocus();
    machine.time.after(1s, [&] {
        seen = true;
        EXPECT_EQ(enabled(), QString());
        EXPECT_EQ(view->focusWidget(), control("txtCurrentDownload")) << "where keys do nothing";
        EXPECT_EQ(view->cursor().shape(), Qt::BusyCursor);
        EXPECT_TRUE(control("cmdSaveDetails")->isEnabled());
        EXPECT_FALSE(view->close());
        EXPECT_TRUE(view->isVisible());
        fill({QStringLiteral("A")}, "1");
        clickRow(0);
        EXPECT_EQ(enabled(), QString()) << "a mark must not start an erasure now";
    });
    click("cmdConfig");
    EXPECT_TRUE(seen);
    EXPECT_EQ(status(), QStringLiteral("Error 42 - Timer expired - no response received"));
    EXPECT_EQ(enabled(), QString::fromLatin1(idle)) << "the mark counts from the next click on";
    EXPECT_EQ(view->focusWidget(), control("ListView1")) << "the user has moved it there";
    EXPECT_EQ(view->cursor().shape(), Qt::ArrowCursor);
    EXPECT_TRUE(view->close());
}

TEST_F(OperationsTest, TheEndOfTheSessionClosesItInTheMiddle)
{
    start();
    play({logOn, askForReport});
    machine.time.after(1s, [&] {
        static_cast<frmDownload*>(view.data())->onSessionEnds();
        EXPECT_TRUE(view->close());
    });
    click("cmdConfig");
    EXPECT_TRUE(window.expired());
    EXPECT_EQ(lastError().code(), Code::UserCancelled);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(view.isNull());
}

TEST_F(OperationsTest, AnUnexpectedFailureIsShownAndTheButtonsComeBack)
{
    start();
    fill({QStringLiteral("A")}, "1");
    window.lock()->setDownLoadManager(nullptr);
    for (const char* name : {"cmdConfig", "cmdDownload", "cmdErase"}) {
        clickRow(0);
        if (!control("cmdErase")->isEnabled())
            clickRow(0);
        if (name == std::string_view("cmdDownload"))
            dialogs.answers.emplace_back(QStringList(filePath("a.srec")));
        machine.messages.expectBox(QStringLiteral("Error 91 ..."));
        click(name);
        EXPECT_EQ(enabled(), QString::fromLatin1(idle)) << name;
        EXPECT_FALSE(window.lock()->busy());
    }
    window.lock()->setDownLoadManager(manager.get());
}

TEST_F(OperationsTest, WithoutFilesNothingIsSent)
{
    start();
    const std::tuple<std::optional<QStringList>, int, const char*> cases[]{
        {std::nullopt, 31, "File selection cancelled"},
        {QStringList(), 32, "No file has been selected"},
        {QStringList(filePath("none.srec")), 33, "Error 33 - File does not exist"},
    };
    for (const auto& [answer, code, text] : cases) {
        dialogs.answers.push_back(answer);
        click("cmdDownload");
        EXPECT_EQ(status(), QString::fromLatin1(text));
        EXPECT_EQ(lastError().number(), code);
        EXPECT_EQ(enabled(), QString::fromLatin1(idle));
    }
    machine.ports.unavailable.insert(QStringLiteral("COM1:"));
    click("cmdDownload"); // no dialog
    EXPECT_EQ(status(), QStringLiteral("Error 12 - Serial port in use by another application"));
    EXPECT_EQ(lastError().number(), 12);
}

TEST_F(OperationsTest, APortThatHasBecomeFreeIsUsedUnderItsOldEntry)
{
    machine.ports.unavailable.insert(QStringLiteral("COM1:"));
    start();
    EXPECT_EQ(window.lock()->portText(), QStringLiteral("COM1: (unavailable)"));
    machine.ports.unavailable.clear();
    dialogs.answers.emplace_back(std::nullopt);
    click("cmdDownload");
    EXPECT_EQ(status(), QStringLiteral("File selection cancelled"));
}

TEST_F(OperationsTest, PlugEventsChangeTheListAndNothingElse)
{
    start();
    QCoreApplication::processEvents();
    window.lock()->selectPort(1);
    window.lock()->setStatusPanelStatus(QStringLiteral("kept"));
    auto* box = control<QComboBox>("cboPort");
    const auto plug = [&](const char* names, const char* expected) {
        machine.ports.names = QString::fromLatin1(names).split(u' ', Qt::SkipEmptyParts);
        machine.ports.plugEvent();
        QStringList entries;
        for (int i = 0; i < box->count(); ++i)
            entries.append(box->itemText(i));
        EXPECT_EQ(entries.join(u'|'), QString::fromLatin1(expected));
    };
    machine.ports.obstacle = QStringLiteral("in use by x");
    machine.ports.unavailable.insert(QStringLiteral("COM8:"));
    const std::pair<const char*, const char*> rows[]{
        {"COM1: COM7: COM8:", "COM1:|COM7:|COM8: (unavailable)"},
        {"COM1:", "COM1:|COM7: (unavailable)"},
        {"", "COM7: (unavailable)"},
        {"COM3: COM7: COM8:", "COM3:|COM7:|COM8: (unavailable)"},
    };
    for (const auto& [names, entries] : rows) {
        plug(names, entries);
        EXPECT_EQ(box->currentText().left(5), QStringLiteral("COM7:"));
        EXPECT_EQ(box->currentIndex(), window.lock()->portIndex());
        EXPECT_EQ(status(), QStringLiteral("kept")) << "SetPort would say Ready";
    }
    EXPECT_EQ(box->toolTip(), QStringLiteral("COM7:\nAdapter\nSerial number S1\n7"));
    EXPECT_EQ(box->itemData(2, Qt::ToolTipRole).toString(),
              QStringLiteral("Adapter\nSerial number S1\n8\nIn use by x. Remedy."));
    play({logOn, askForReport});
    machine.time.after(1s, [&] { plug("COM7:", rows[3].second); });
    click("cmdConfig");
    EXPECT_EQ(box->count(), 1) << "read at the end of the operation";
    machine.ports.unavailable.insert(QStringLiteral("COM7:"));
    click("cmdDownload");
    EXPECT_EQ(control<QLabel>("noticeHeadline")->text(),
              QStringLiteral("Nothing was sent (error 12): COM7: in use by x."));
}

TEST_F(OperationsTest, TheFirstPortOfAMachineThatHadNoneIsUsedWhenAButtonIsPressed)
{
    machine.ports.names.clear();
    start();
    EXPECT_EQ(status(), QStringLiteral("Error 5 - no serial port: plug in the adapter"));
    click("cmdConfig");
    EXPECT_EQ(control<QLabel>("noticeNext")->text(), QStringLiteral("Plug in the adapter."));
    machine.ports.names = {QStringLiteral("COM4:")};
    machine.ports.plugEvent();
    EXPECT_EQ(control<QComboBox>("cboPort")->currentText(), QStringLiteral("COM4:"));
    play({logOn, askForReport, answerReport, restart});
    click("cmdConfig");
    EXPECT_EQ(machine.line().commPort(), 4);
    EXPECT_EQ(status(), QStringLiteral("Configuration successfully read"));
}

TEST_F(OperationsTest, DroppedFilesAreDownloaded)
{
    start();
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(filePath("dropped.srec"))});
    QDragEnterEvent enter(QPoint(50, 50), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(view, &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop(QPointF(50, 50), Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton,
                    Qt::ShiftModifier);
    drop.setDropAction(Qt::MoveAction);
    QCoreApplication::sendEvent(view, &drop);
    EXPECT_EQ(drop.dropAction(), Qt::CopyAction) << "the source would delete what was moved";
    EXPECT_EQ(status(), QStringLiteral("Ready")) << "the drop ends first";
    QTest::qWait(1);
    EXPECT_EQ(status(), QStringLiteral("Error 33 - File does not exist"));
}

TEST_F(OperationsTest, TheDetailsAreSavedByteForByte)
{
    start();
    const QString path = QStringLiteral("/out/details.csv");
    dialogs.answers.emplace_back(QStringList(path));
    click("cmdSaveDetails");
    const QByteArray titles = "Type,Code and Version,Status,Target Hardware,NTID\r\n";
    EXPECT_EQ(machine.files.files[path].content, titles);
    EXPECT_EQ(status(), QStringLiteral("Ready"));
    EXPECT_EQ(dialogs.asked.last(),
              QStringLiteral("save::Comma Separated Variable Files|*.csv|All files|*.*"));

    fill({QStringLiteral("JVA1,\u00e9\u20ac")}, "1", 7); // hides two columns
    dialogs.answers.emplace_back(QStringList(path));
    click("cmdSaveDetails");
    EXPECT_EQ(machine.files.files[path].content,
              titles + "Radio Application,JVA1,\xe9?,7,Torso,5\r\n");
    EXPECT_EQ(dialogs.asked.last().section(u':', 1, 1), path) << "what the dialog last held";

    machine.settings.values[QStringLiteral("LastFile")] = filePath("last.srec");
    dialogs.answers = {std::nullopt, std::nullopt};
    click("cmdDownload");
    click("cmdSaveDetails");
    EXPECT_EQ(dialogs.asked.last().section(u':', 1, 1), filePath("Configuration.csv"))
        << "no firmware is written over";

    machine.files.unwritable.insert(path);
    dialogs.answers.emplace_back(QStringList(path));
    click("cmdSaveDetails");
    EXPECT_EQ(lastError().number(), 9011);
    EXPECT_TRUE(status().startsWith(QStringLiteral("Error 13 - "))) << qPrintable(status());
}

TEST_F(OperationsTest, ASaveBehindAnOperationIsNotItsOutcome)
{
    start();
    dialogs.mayStayOpen = true;
    play({logOn, askForReport,
          "<5000 43 0A 00 52 00 56 00 4B 00 42 00 31 00 00 00 00 00 00 00 00 05"
          " 00 B6 8F\n< AF AF\n",
          restart});
    QString before;
    machine.time.after(300ms, [&] {
        before = status();
        click("cmdSaveDetails");
    });
    machine.time.after(400ms, [&] {
        if (dialogs.open)
            dialogs.open(std::nullopt);
        EXPECT_EQ(status(), QStringLiteral("File selection cancelled"));
    });
    machine.time.after(3500ms, [&] { EXPECT_EQ(status(), before) << "the operation's again"; });
    click("cmdConfig");
    EXPECT_EQ(dialogs.asked.size(), 1);
    EXPECT_EQ(lastError().number(), 0) << "the user's cancel of the dialog is not the report's";
    EXPECT_EQ(status(), QStringLiteral("Configuration successfully read"));
}

TEST_F(OperationsTest, HelpOpensAtTheTopicOfTheWindow)
{
    start();
    const QStringList expected{QStringLiteral("contents C:\\Tools\\rv4kd_en.chm"),
                               QStringLiteral("topic 2368 C:\\Tools\\rv4kd_en.chm")};
    click("cmdHelp");
    EXPECT_EQ(help.requests, expected);
    help.requests.clear();
    view->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(view));
    QTest::keyClick(control("txtCurrentDownload"), Qt::Key_F1);
    EXPECT_EQ(help.requests, expected);

    help.installed = false;
    machine.messages.expectBox(QStringLiteral("HTML Help is not installed."));
    click("cmdHelp");
}

} // namespace
} // namespace fldc
