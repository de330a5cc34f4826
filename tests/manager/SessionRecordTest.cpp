#include "manager/clsDLManager.h"

#include "protocol/IWaitDialog.h"
#include "support/SessionLog.h"
#include "support/VirtualPlatform.h"
#include "ui/logic/DownloadWindow.h"

#include <gtest/gtest.h>

namespace fldc {
namespace {

// Whole operations on a radio that follows a script, and what is told of them.
class SessionRecordTest : public testing::Test,
                          public IDownloadWindowFactory,
                          public IWaitDialogFactory {
protected:
    SessionRecordTest()
    {
        addImage("a", QByteArray(2, '\x12'));
        addImage("b", QByteArray(2, '\x12'));
        addImage("zeros", QByteArray(64, '\0'));
        machine.program.limit = std::chrono::seconds(10);
        manager = std::make_unique<clsDLManager>(machine.platform, *this, *this);
        manager->setListener(&log);
    }
    void TearDown() override { EXPECT_EQ(machine.line().rest(), QString()); }

    // One image for the hardware RVKB1, from 00010000 on.
    void addImage(const char* name, const QByteArray& data)
    {
        machine.files.files[QString::fromLatin1(name)].content =
            "DW 8\nMD \"RVKB1\",0\nS00000004A4841324600\nS2" +
            QByteArray::number(data.size() + 4, 16).rightJustified(2, '0') + "010000" +
            data.toHex() + "00\nS804000000FB\n";
    }
    // @p operation: "report", "erase", "restart", or the files of a download.
    int run(const char* operation, const QString& script)
    {
        log.lines.clear();
        machine.line().play(script);
        const QString name = QString::fromLatin1(operation);
        QString text;
        if (name == u"report")
            return manager->ReportConfigurations(text);
        if (name == u"erase")
            return manager->EraseSelected(QStringLiteral("1"), text);
        if (name == u"restart")
            return static_cast<int>(manager->ResetRadio());
        manager->LoadFilesByPath(name, QStringLiteral(","));
        return manager->DownLoad(text);
    }

    VirtualPlatform machine;
    SessionLog log;
    std::unique_ptr<clsDLManager> manager;

private:
    [[nodiscard]] std::shared_ptr<IDownloadWindow> createWindow() override
    {
        return std::make_shared<DownloadWindow>(machine.platform, nullptr);
    }
    [[nodiscard]] std::unique_ptr<IWaitDialog> createWaitDialog() override { return nullptr; }
};

#define SILENT_PROBES                                                                              \
    "@ 115200\n> 38 00 C7 FF\n@ 57600\n> 38 00 C7 FF\n@ 19200\n> 38 00 C7 FF\n"                    \
    "@ 9600\n> 38 00 C7 FF\n"
#define DONE "< AF AF\n"
#define LOG_ON "@ ..\n@ 19200\n> 5E\n< 76\n> 7E\n< 56 2A\n< 3F\n" DONE
#define FAST "> 30 01 00 60 CF 9E\n@ 115200\n" DONE
#define REPORT                                                                                     \
    "> 31 00 CE FF\n< 43 0A 00 52 00 56 00 4B 00 42 00 31 00 00 00 01 00 00 00 00 05 00 B6 "       \
    "8E\n" DONE
#define AUTHORISE "> 42 06 05 00 00 4A 00 48 00 41 00 32 00 46 B7 AE\n" DONE
#define LAYOUT "> 3E 00 C1 FF\n< 52 05 00 01 00 01 00 00 01 00 00 00 AC F8 AF AF\n"
#define UNLOCK "> 32 01 00 00 CD FE\n"
#define ERASE "> 33 01 00 00 CC FE\n"
#define ADDRESS "> 34 02 00 01 00 00 CB FC\n"
#define DATA "> 35 01 12 12 B8 EC\n"
#define LOCK "> 39 01 00 00 C6 FE\n"
#define WRITE UNLOCK DONE ERASE DONE ADDRESS DONE DATA DONE LOCK DONE
#define RESTART "> 36 00 C9 FF\n@ 19200\n"
#define READY LOG_ON FAST REPORT AUTHORISE LAYOUT

TEST_F(SessionRecordTest, ADownloadTellsEverything)
{
    machine.files.files[QStringLiteral("C:\\Tools\\JVA2U.Srec")].content =
        machine.files.files[QStringLiteral("a")].content;
    const auto boot = "@ ..\n@ 19200\n> 5E\n< 56\n> 7E\n< 00 52 56 4B 42 32 2A\n> 12\n> 12\n" DONE;
    EXPECT_EQ(
        run("a,zeros",
            QString::fromLatin1(boot) +
                QStringLiteral(FAST REPORT AUTHORISE LAYOUT WRITE
                               "> 3A 01 00 00 C5 FE\n" DONE AUTHORISE LAYOUT UNLOCK DONE ERASE DONE
                               "> 3C 02 00 01 00 00 C3 FC\n" DONE
                               "> 3D 06..\n" DONE LOCK DONE REPORT RESTART "< 76\n")),
        0);
    EXPECT_EQ(log.lines.join(u'\n').toStdString() + '\n', R"(start download
line 1 9600
line 1 19200
reset sent
reset done
radio RVKB2* without boot application
boot C:\Tools\JVA2U.Srec 2
line 1 115200
speed 115200
before RVKB1 0 5 0
target 1 a JHA2F at 5 0
unlock sent
unlock done
unlocked 0
erase sent
erase done
erased 0
table 65536 2 as 2
data sent
data done
progress 2 of 2
all data
lock sent
lock done
locked 0
target 2 zeros JHA2F at 5 0
unlock sent
unlock done
unlocked 0
erase sent
erase done
erased 0
table 65536 64 as 12 compressed
data sent
data done
progress 12 of 12
all data
lock sent
lock done
locked 0
after RVKB1 0 5 0
restart sent
line 1 19200
restart done
end 0
)");
    EXPECT_EQ(log.state(), QStringLiteral("restarted"));
    EXPECT_EQ(log.message, QStringLiteral("Success"));

    // A file that fits nothing.
    machine.files.files[QStringLiteral("b")].content.replace("RVKB1", "RVKB9");
    EXPECT_EQ(run("b", QStringLiteral(LOG_ON FAST REPORT REPORT RESTART "< 76\n")), 37);
    EXPECT_EQ(log.lines.last(), QStringLiteral("end 37"));
    EXPECT_TRUE(log.message.endsWith(QStringLiteral("\r\nJHA2F\r\n")));
}

struct RecordCase {
    const char* operation;
    const char* script;
    int cancelAfter;    ///< milliseconds; 0: not at all
    const char* record; ///< of a download: behind "target"
    const char* state;
};

class RecordTable : public SessionRecordTest, public testing::WithParamInterface<RecordCase> {};

TEST_P(RecordTable, SaysWhatHappened)
{
    const RecordCase& each = GetParam();
    if (each.operation == QByteArray("erase")) {
        ASSERT_EQ(run("report", QStringLiteral(LOG_ON REPORT RESTART "< 76\n")), 0);
    }
    if (each.cancelAfter > 0)
        machine.time.after(std::chrono::milliseconds(each.cancelAfter),
                           [this] { manager->cancelOperation(); });
    (void)run(each.operation, QString::fromLatin1(each.script));
    const QString target = QStringLiteral(" at 5 0, ");
    const QString all = log.lines.join(QStringLiteral(", "));
    EXPECT_EQ(
        all.mid(all.indexOf(target) + (all.contains(target) ? target.size() : 1)).toStdString(),
        each.record);
    EXPECT_EQ(log.state().toStdString(), each.state);
}

#define INFLATE "> 3C 02 00 01 00 00 C3 FC\n< 80 01 AF AF\n"
#define ERASE_AUTHORISE "> 42 06 05 00 00 52 00 56 00 4B 00 42 00 31 B7 93\n" DONE
INSTANTIATE_TEST_SUITE_P(
    Operations, RecordTable,
    testing::Values(
        RecordCase{"report", LOG_ON REPORT RESTART "< 76\n", 0,
                   "start report, line 1 9600, line 1 19200, reset sent, reset done, radio V*, "
                   "report RVKB1 0 5 0, restart sent, line 1 19200, restart done, end 0",
                   "restarted"},
        RecordCase{"report", "! open 8005\n", 0, "start report, end 12", "untouched"},
        RecordCase{"report", "@ ..\n@ 19200\n! write 5\n@ 9600\n! write 5\n@ 19200\n" SILENT_PROBES,
                   0,
                   "start report, line 1 9600, line 1 19200, line 1 9600, line 1 19200, line 1 "
                   "115200, line 1 57600, line 1 19200, line 1 9600, end 42",
                   "untouched"},
        RecordCase{"report",
                   "@ ..\n@ 19200\n> 5E\n< 4F 4B 0D 0A\n@ 9600\n> 5E\n@ 19200\n" SILENT_PROBES, 0,
                   "start report, line 1 9600, line 1 19200, reset sent, unexpected 4f4b0d0a text, "
                   "reset unanswered 21, line 1 9600, reset sent, reset unanswered 21, line 1 "
                   "19200, line 1 115200, line 1 57600, line 1 19200, line 1 9600, end 42",
                   "reset"},
        RecordCase{"report", "@ ..\n@ 19200\n> 5E\n@ 9600\n> 5E\n< 56\n@ 19200\n", 0,
                   "start report, line 1 9600, line 1 19200, reset sent, reset unanswered 21, line "
                   "1 9600, reset sent, reset done, line 1 19200, power cycle F1, end 21",
                   "reset"},
        RecordCase{
            "report",
            "@ ..\n@ 19200\n> 5E\n@ 9600\n> 5E\n@ 19200\n@ 115200\n> 38 00 C7 FF\n" DONE REPORT
                RESTART "@ 9600\n> 5E\n< 76\n",
            0,
            "start report, line 1 9600, line 1 19200, reset sent, reset unanswered 21, line 1 "
            "9600, reset sent, reset unanswered 21, line 1 19200, line 1 115200, radio (none), "
            "report RVKB1 0 5 0, restart sent, line 1 19200, line 1 9600, restart done, end 0",
            "restarted"},
        RecordCase{"report", "@ ..\n@ 19200\n> 5E\n< 56\n> 7E\n< 56 2A\n", 0,
                   "start report, line 1 9600, line 1 19200, reset sent, reset done, radio V* "
                   "without boot application, end 33",
                   "reset"},
        RecordCase{"restart", "", 0, "start restart, end 12", "untouched"},
        RecordCase{"a", READY UNLOCK "< 81 03 AF AF\n", 0,
                   "unlock sent, unlock refused 8103, end 8103", "upgrade-mode"},
        RecordCase{"a", READY UNLOCK "", 0, "unlock sent, unlock unanswered 42, end 42",
                   "unlocked"},
        RecordCase{"a", READY UNLOCK DONE "! write 5\n", 0,
                   "unlock sent, unlock done, unlocked 0, end 15", "unlocked"},
        RecordCase{"a", READY UNLOCK DONE ERASE "< 81 03 AF AF\n", 0,
                   "unlock sent, unlock done, unlocked 0, erase sent, erase refused 8103, end 8103",
                   "unlocked"},
        RecordCase{"a", READY UNLOCK DONE ERASE "< 33 01 00 00 CC FE AF AF\n", 0,
                   "unlock sent, unlock done, unlocked 0, erase sent, unexpected 33010000ccfeafaf "
                   "own echo, erase unanswered 51, end 51",
                   "erased"},
        RecordCase{"a",
                   READY UNLOCK DONE ERASE "< AE AE 81 05 AF AF\n" ERASE "< 80 02 AF AF\n" ERASE
                                           "< 80 02 AF AF\n",
                   0,
                   "unlock sent, unlock done, unlocked 0, erase sent, erase unanswered 59, again "
                   "51 Erase Flash 2 59, erase sent, erase refused 55, again 51 Erase Flash 3 55, "
                   "erase sent, erase refused 55, end 55",
                   "erased"},
        RecordCase{"a", READY UNLOCK DONE ERASE "! hangup\n", 0,
                   "unlock sent, unlock done, unlocked 0, erase sent, erase unanswered 15, end 15",
                   "erased"},
        RecordCase{"a", READY UNLOCK DONE ERASE, 1000,
                   "unlock sent, unlock done, unlocked 0, erase sent, erase unanswered 1, end 1",
                   "erased"},
        RecordCase{"a", READY UNLOCK DONE ERASE DONE ADDRESS DONE DATA "< 80 02 AF AF\n" DATA "", 0,
                   "unlock sent, unlock done, unlocked 0, erase sent, erase done, erased 0, table "
                   "65536 2 as 2, data sent, data refused 55, again 53 Write Flash Data 2 55, data "
                   "sent, data unanswered 42, end 42",
                   "partly-written"},
        RecordCase{
            "a",
            READY UNLOCK DONE ERASE DONE ADDRESS DONE DATA "< 81 04 AF AF\n" ERASE DONE ADDRESS
                                                           "< 81 06 AF AF\n",
            0,
            "unlock sent, unlock done, unlocked 0, erase sent, erase done, erased 0, table 65536 2 "
            "as 2, data sent, data refused 8104, erase sent, erase done, erased 0, end 8106",
            "erased"},
        RecordCase{"a", READY UNLOCK DONE ERASE DONE ADDRESS DONE DATA DONE LOCK "", 0,
                   "unlock sent, unlock done, unlocked 0, erase sent, erase done, erased 0, table "
                   "65536 2 as 2, data sent, data done, progress 2 of 2, all data, lock sent, lock "
                   "unanswered 42, end 42",
                   "written"},
        RecordCase{"zeros",
                   READY UNLOCK DONE ERASE DONE INFLATE INFLATE INFLATE ADDRESS DONE
                   "> 35 20..\n" DONE LOCK "< 81 03 AF AF\n",
                   0,
                   "unlock sent, unlock done, unlocked 0, erase sent, erase done, erased 0, table "
                   "65536 64 as 64, data sent, data done, progress 64 of 64, all data, lock sent, "
                   "lock refused 8103, end 8103",
                   "written"},
        RecordCase{"a", READY WRITE REPORT RESTART "@ 9600\n> 5E\n", 0,
                   "unlock sent, unlock done, unlocked 0, erase sent, erase done, erased 0, table "
                   "65536 2 as 2, data sent, data done, progress 2 of 2, all data, lock sent, lock "
                   "done, locked 0, after RVKB1 0 5 0, restart sent, line 1 19200, line 1 9600, "
                   "restart unanswered 21, end 21",
                   "locked"},
        RecordCase{
            "a,b",
            READY WRITE "> 3A 01 00 00 C5 FE\n" DONE AUTHORISE LAYOUT UNLOCK "< 81 03 AF AF\n", 0,
            "unlock sent, unlock done, unlocked 0, erase sent, erase done, erased 0, table 65536 2 "
            "as 2, data sent, data done, progress 2 of 2, all data, lock sent, lock done, locked "
            "0, target 2 b JHA2F at 5 0, unlock sent, unlock refused 8103, end 8103",
            "locked"},
        RecordCase{
            "erase",
            LOG_ON ERASE_AUTHORISE LAYOUT UNLOCK DONE ERASE DONE LOCK DONE REPORT RESTART "< 76\n",
            0,
            "start erase, line 1 19200, line 1 19200, reset sent, reset done, radio V*, unlock "
            "sent, unlock done, unlocked 0, erase sent, erase done, erased 0, lock sent, lock "
            "done, locked 0, after RVKB1 0 5 0, restart sent, line 1 19200, restart done, end 0",
            "erased"},
        RecordCase{"erase",
                   LOG_ON ERASE_AUTHORISE LAYOUT UNLOCK DONE ERASE "< 81 03 AF AF\n" REPORT RESTART
                                                                   "< 76\n",
                   0,
                   "start erase, line 1 19200, line 1 19200, reset sent, reset done, radio V*, "
                   "unlock sent, unlock done, unlocked 0, erase sent, erase refused 8103, after "
                   "RVKB1 0 5 0, restart sent, line 1 19200, restart done, end 8103",
                   "restarted"}));

} // namespace
} // namespace fldc
