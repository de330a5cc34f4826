#include "WindowTest.h"

#include "shared/LastError.h"
#include "ui/logic/session/Notice.h"
#include "ui/logic/session/RunNotes.h"
#include "ui/logic/session/WritePlan.h"
#include "ui/session/TransferBar.h"

#include <QApplication>
#include <QClipboard>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>

#include <chrono>

namespace fldc {
namespace {

using namespace std::chrono_literals;
using SessionTest = WindowTest;

using session::Condition;
using session::Operation;

Run runOf(Operation operation, std::int32_t code, Condition radio, std::vector<ImageNote> images)
{
    Run run;
    run.operation = operation;
    run.ended = 65s;
    run.code = code;
    run.message = QStringLiteral("Message");
    run.radio.now = radio;
    run.images = std::move(images);
    return run;
}

ImageNote image(const char* tag, int begun, int locked)
{
    const QString name = QString::fromLatin1(tag);
    return {name, name.toLower() + QStringLiteral(".srec"), name, begun, locked};
}

TEST(NoticeTest, ItSaysWhatBecameOfEachFileAndOfTheRadio)
{
    using enum Notice::Kind;
    fldc::Run unconfirmed = runOf(Operation::Download, 0, Condition::Restarted, {image("A", 1, 1)});
    unconfirmed.after = {{QStringLiteral("A"), 2, 0, 0, false}};
    fldc::Run refused = runOf(Operation::Download, 34, Condition::Untouched, {});
    refused.refused = QStringList(QStringLiteral("b.srec: line 3: too short"));
    fldc::Run load = refused;
    load.operation.reset();
    load.code = 1;
    const std::tuple<fldc::Run, Notice::Kind, const char*, const char*> cases[]{
        {runOf(Operation::Download, 0, Condition::Restarted, {image("A", 2, 2), image("B", 1, 1)}),
         Good, "Written in 1 min 05 s: A, B.", "Written: b.srec, B"},
        {runOf(Operation::Download, 37, Condition::Restarted, {image("A", 1, 1), image("B", 0, 0)}),
         Attention, "Written in 1 min 05 s: A. Not written: 1 of 2.",
         "Not written, no component of the radio matches: b.srec, B"},
        {runOf(Operation::Download, 42, Condition::LaterTarget,
               {image("A", 1, 1), image("B", 2, 1), image("C", 0, 0)}),
         Failed, "The download failed after 1 min 05 s: error 42, Message",
         "Written: a.srec, A\nBegun and not completed: b.srec, B\nNot reached: c.srec, C\n"
         "The radio holds only a part of what was to be written.\n"
         "Download all files again before the radio is used."},
        {unconfirmed, Attention, "Written in 1 min 05 s: A.",
         "Written, but the radio does not show it: a.srec, A"},
        {runOf(Operation::Report, 1, Condition::Reset, {}), Attention,
         "The report was cancelled after 1 min 05 s.", "did not log on"},
        {runOf(Operation::Erase, 1, Condition::Erased, {}), Failed,
         "The erasure was cancelled after 1 min 05 s.", "unless it was to go"},
        {refused, Failed, "The download failed", "Refused: b.srec: line 3: too short"},
        {load, Attention, "Reading the files was cancelled", "Nothing in the radio was touched."},
    };
    for (const auto& [run, kind, headline, detail] : cases) {
        const Notice notice = noticeOf(run);
        EXPECT_EQ(notice.kind, kind) << headline;
        EXPECT_TRUE(notice.headline.startsWith(QString::fromLatin1(headline)))
            << qPrintable(notice.headline);
        EXPECT_TRUE(notice.text().contains(QString::fromLatin1(detail)))
            << qPrintable(notice.text());
    }
}

TEST_F(SessionTest, AReportIsFollowedCancelledAndToldInWords)
{
    start();
    auto* cancel = control<QPushButton>("cmdCancel");
    auto* bar = control<TransferBar>("prgDownloadProgress");
    EXPECT_FALSE(cancel->isVisible());
    play({logOn, askForReport});
    machine.time.after(1s, [&] {
        EXPECT_TRUE(cancel->isVisible());
        EXPECT_TRUE(bar->alive());
        EXPECT_TRUE(bar->text().startsWith(QStringLiteral("Reading the configuration")));
        EXPECT_EQ(bar->value(), 0);
        EXPECT_FALSE(view->close());
        EXPECT_TRUE(control<QMessageBox>("closeRefusal")->isVisible());
        click("cmdCancel"); // at once: nothing is erased
    });
    click("cmdConfig");
    EXPECT_EQ(lastError().code(), Code::UserCancelled);
    EXPECT_FALSE(cancel->isVisible() || bar->alive());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(view->findChild<QMessageBox*>(), nullptr) << "closed with the operation";
    EXPECT_TRUE(control("noticeStrip")->isVisible());
    EXPECT_EQ(control<QLabel>("noticeHeadline")->text(),
              QStringLiteral("The report was cancelled after 1 s."));
    click("cmdNoticeCopy");
    const QString copied = QApplication::clipboard()->text();
    for (const char* part : {"(1.21.00.00)", "report, result 1", "Port: COM1:, 1", "upgrade-mode"})
        EXPECT_TRUE(copied.contains(QString::fromLatin1(part))) << part << qPrintable(copied);

    play({logOn, askForReport, answerReport, restart});
    machine.time.after(1ms, [&] {
        EXPECT_FALSE(control("noticeStrip")->isVisible());
        window.lock()->setRemark(QStringLiteral("the record is not kept"));
        EXPECT_FALSE(control("noticeStrip")->isVisible());
    });
    click("cmdConfig");
    EXPECT_TRUE(
        control<QLabel>("noticeHeadline")->text().startsWith(QStringLiteral("Read in 0 s")));
    EXPECT_EQ(control<QLabel>("noticeNext")->text(), QStringLiteral("The record is not kept"));
}

TEST_F(SessionTest, ThePlanSetsFilesAgainstTheReport)
{
    start();
    fill({QStringLiteral("RVKB1-1"), QStringLiteral("JHA2X-1")}, "00");
    machine.files.files[QStringLiteral("/fw\\a.srec")].content =
        "DW 8\nMD \"RVKB1\",0\nMD \"RVKC9\",0\nS00000004A4841325800\n"
        "S206010000123400\nS804000000FB\n";
    manager->LoadFiles(QStringLiteral("/fw") + QChar::Null + QStringLiteral("a.srec"));
    const auto plan = planOf(*manager->loadedFiles(), window.lock()->configurations());
    ASSERT_FALSE(plan.empty());
    EXPECT_EQ(plan.front().oldVersion, QStringLiteral("JHA2X-1"));
    EXPECT_EQ(plan.front().newVersion, QStringLiteral("JHA2X"));
    EXPECT_EQ(plan.front().component, QStringLiteral("Radio Application on RVKB1-1, NTID 5"));
    EXPECT_TRUE(plan.front().fits);

    // Some pieces of the long file end within a line's end.
    machine.files.files[QStringLiteral("/fw\\long")].content =
        QByteArray("abc\r\n").repeated(300'000) + "S9030000FB";
    ChecksumScan scan(machine.files, {QStringLiteral("/fw\\a.srec"), QStringLiteral("/fw\\none"),
                                      QStringLiteral("/fw\\long")});
    while (scan.step()) {
    }
    EXPECT_TRUE(
        scan.faults().contains(QStringLiteral("a.srec, line 5: the record's checksum is wrong")) &&
        scan.faults().contains(QStringLiteral("long, line 300001: the record's checksum is wrong")))
        << qPrintable(scan.faults().join(u'\n'));
}

} // namespace
} // namespace fldc
