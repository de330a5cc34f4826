#include "manager/clsDLManager.h"

#include "app/services/LogState.h"
#include "firmware/clsFile.h"
#include "protocol/IWaitDialog.h"
#include "support/VirtualPlatform.h"
#include "ui/logic/DownloadWindow.h"

#include <gtest/gtest.h>

namespace fldc {
namespace {

class Windows final : public IDownloadWindowFactory {
public:
    explicit Windows(const Platform& platform) : m_platform(platform) {}
    [[nodiscard]] std::shared_ptr<IDownloadWindow> createWindow() override
    {
        return latest = std::make_shared<DownloadWindow>(m_platform, nullptr);
    }
    std::shared_ptr<DownloadWindow> latest;

private:
    const Platform& m_platform;
};

class NoDialogs final : public IWaitDialogFactory {
public:
    [[nodiscard]] std::unique_ptr<IWaitDialog> createWaitDialog() override
    {
        ADD_FAILURE() << "no user, but a wait dialog";
        return nullptr;
    }
};

// The conversation, piece by piece. A radio with own software; one flash block at 00010000.
constexpr auto logOn = "@ ..\n@ 19200\n> 5E\n< 76\n> 7E\n< 2A\n< 3F\n< AF AF\n";
constexpr auto fast = "> 30 01 00 60 CF 9E\n@ 115200\n< AF AF\n";
constexpr auto report =
    "> 31 00 CE FF\n"
    // "RVKB1", address 0, status 0, network 5, device 0
    "< 43 0A 00 52 00 56 00 4B 00 42 00 31 00 00 00 00 00 00 00 00 05 00 B6 8F\n"
    "< AF AF\n";
constexpr auto restart = "> 36 00 C9 FF\n@ 19200\n< 76\n";
constexpr auto authorise = "> 42 06 05 00 00 4A 00 48 00 41 00 32 00 46 B7 AE\n"; // 0500 JHA2F
constexpr auto layout = "> 3E 00 C1 FF\n< 52 05 00 01 00 01 00 00 01 00 00 00 AC F8 AF AF\n";
constexpr auto writeBlock = "> 32 01 00 00 CD FE\n< AF AF\n> 33 01 00 00 CC FE\n< AF AF\n"
                            "> 34 02 00 01 00 00 CB FC\n< AF AF\n> 35 01 12 34 B8 CA\n< AF AF\n"
                            "> 39 01 00 00 C6 FE\n< AF AF\n";

// One image for the hardware RVKB1, two bytes at 00010000.
QByteArray firmware(const char* tag, const char* target = "MD \"RVKB1\",0\n")
{
    return QByteArray("DW 8\n") + target + "S0000000" + QByteArray(tag).toHex() + "00\n" +
           "S206010000123400\nS804000000FB\n";
}

class ManagerTest : public testing::Test {
protected:
    ManagerTest()
    {
        lastError() = {};
        machine.settings.values[QStringLiteral("Debug")] = QStringLiteral("True");
        addFile("a.srec", firmware("JHA2F"));
    }
    void TearDown() override
    {
        EXPECT_EQ(machine.line().rest(), QString());
        EXPECT_EQ(machine.time.timersRunning(), 0);
        manager.reset();
        for (const auto& [path, file] : machine.files.files) {
            if (!path.endsWith(QStringLiteral(".log")))
                continue;
            EXPECT_EQ(file.content.count("START LOG"), file.content.count("END LOG"))
                << qPrintable(path);
        }
    }
    void addFile(const char* name, const QByteArray& content)
    {
        machine.files.files[QStringLiteral("C:\\fw\\") + QString::fromLatin1(name)].content =
            content;
    }
    void create()
    {
        manager = std::make_unique<clsDLManager>(machine.platform, windows, dialogs);
        QObject::connect(manager.get(), &clsDLManager::ReportConfigurationsUpdate, manager.get(),
                         [this](const QString& text) { reports.append(text); });
    }
    int load(const char* names)
    {
        return manager->LoadFilesEx(QStringLiteral("C:\\fw,") + QString::fromLatin1(names),
                                    QStringLiteral(","));
    }
    void play(std::initializer_list<const char*> pieces)
    {
        for (const char* piece : pieces)
            machine.line().play(piece);
    }
    [[nodiscard]] QString status() const { return windows.latest->statusPanelStatus(); }
    [[nodiscard]] QString lastErrorText() const
    {
        std::int32_t number = 0;
        QString text;
        manager->GetLastError(number, text);
        return QString::number(number) + u' ' + text;
    }
    [[nodiscard]] QByteArray log(const char* name) const
    {
        const auto found =
            machine.files.files.find(QStringLiteral("C:\\Tools\\") + QString::fromLatin1(name));
        return found == machine.files.files.end() ? QByteArray() : found->second.content;
    }

    VirtualPlatform machine;
    Windows windows{machine.platform};
    NoDialogs dialogs;
    QStringList reports;
    std::unique_ptr<clsDLManager> manager;
};

TEST_F(ManagerTest, ANewOneHasTheFirstListedPortAndNothingElse)
{
    create();
    EXPECT_EQ(lastErrorText(), QStringLiteral("0 Success"));
    EXPECT_EQ(machine.line().commPort(), 1);
    EXPECT_EQ(windows.latest->portIndex(), 0);
    EXPECT_FALSE(windows.latest->isVisible());
    EXPECT_FALSE(manager->AsyncTaskBusy());
    EXPECT_EQ(windows.latest->caption(),
              QStringLiteral("Kelvane Download Component (1.21.00.00) - Debug"));
    play({"@ ..\n"});
    QString text;
    EXPECT_EQ(manager->DownLoad(text), 9011) << "no file list";
    EXPECT_FALSE(machine.line().portOpen());
}

TEST_F(ManagerTest, WithoutAnyPortOperationsFailButDoNotCrash)
{
    machine.ports.names.clear();
    create();
    EXPECT_EQ(lastErrorText(),
              QStringLiteral("9011 Error 5 - no serial port: plug in the adapter"));
    EXPECT_EQ(manager->SetPort(QStringLiteral("3"), false), 9011);
    EXPECT_EQ(status(), QStringLiteral("Error 5 - no serial port: plug in the adapter"));
    QString text;
    EXPECT_EQ(load("a.srec"), 9011);
    EXPECT_EQ(manager->ReportConfigurations(text), 9011);
    EXPECT_EQ(manager->DownLoad(text), 9011);
    EXPECT_EQ(manager->EraseSelected({}, text), 9011);
    EXPECT_EQ(manager->ResetRadio(), 9011);
    EXPECT_EQ(manager->SetUIMode(false), 0) << "its own result, not that of the operation before";
    EXPECT_TRUE(lastErrorText().startsWith(QStringLiteral("9011 ")));
}

TEST_F(ManagerTest, PortsAreChosenByNumberOrEntry)
{
    machine.ports.unavailable.insert(QStringLiteral("COM7:"));
    create();
    const std::tuple<const char*, int, int> cases[]{
        {"7", 0, 7},  {"1", 0, 1}, {"COM7: (unavailable)", 0, 7}, {"COM1:", 0, 1}, {"COM7:", 11, 1},
        {"3", 11, 1}, {"", 11, 1},
    };
    for (const auto& [text, code, port] : cases) {
        EXPECT_EQ(manager->SetPort(QString::fromLatin1(text), false), code) << text;
        EXPECT_EQ(machine.line().commPort(), port) << text;
        EXPECT_EQ(windows.latest->portIndex(), port == 1 ? 0 : 1) << text;
    }
    EXPECT_EQ(status(), QStringLiteral("Error 11 - Serial port does not exist"));
}

TEST_F(ManagerTest, ACancelledLoadLeavesTheFilesBeforeItAndNothingToWrite)
{
    create();
    addFile("b.srec", firmware("JHA2G"));
    EXPECT_EQ(load("a.srec"), 0);
    const auto before = manager->loadedFiles();
    const auto cancel = QObject::connect(manager.get(), &clsDLManager::FileNotLoaded,
                                         [this] { manager->cancelOperation(); });
    EXPECT_EQ(load("none.srec,b.srec"), 1);
    EXPECT_EQ(manager->loadedFiles(), before);
    QString text;
    EXPECT_EQ(manager->DownLoad(text), 1);
    QObject::disconnect(cancel);
    EXPECT_EQ(load("b.srec"), 0);
    EXPECT_NE(manager->loadedFiles(), before);
}

TEST_F(ManagerTest, AReportGivesTextEventAndLogs)
{
    create();
    play({logOn, report, restart});
    QString text;
    EXPECT_EQ(manager->ReportConfigurations(text), 0);
    EXPECT_EQ(text, QStringLiteral("RVKB1|0|5"));
    EXPECT_EQ(reports, QStringList(text));
    EXPECT_EQ(status(), QStringLiteral("Configuration successfully read"));
    EXPECT_EQ(windows.latest->statusPanelBaud(), QStringLiteral("Not connected"));
    EXPECT_FALSE(machine.line().portOpen());
    EXPECT_TRUE(
        log("0_Config.log").contains("\r\n2026-11-22 21:05:33 Configuration: RVKB1|Status: 0\r\n"))
        << log("0_Config.log").constData();
    EXPECT_TRUE(log("0_Download.log").contains("COM PORT (COM1:)\r\n"))
        << "named after the first port";
    EXPECT_EQ(load("a.srec"), 0);
    play({logOn, report, restart});
    (void)manager->ReportConfigurations(text);
    play({"@ ..\n"});
    EXPECT_EQ(manager->DownLoad(text), 9011) << "a report drops the loaded files";
}

TEST_F(ManagerTest, AFailedReportKeepsItsCodeAndEndsInOrder)
{
    create();
    const std::pair<const char*, int> cases[]{
        {"< 13 37 AF AF\n", 51}, {"", 42}, {"! hangup\n", 15}};
    for (const auto& [cut, code] : cases) {
        play({logOn, "> 31 00 CE FF\n", cut});
        QString text = QStringLiteral("as given");
        EXPECT_EQ(manager->ReportConfigurations(text), code);
        EXPECT_EQ(lastErrorText().section(u' ', 0, 0), QString::number(code)) << "over the closing";
        EXPECT_EQ(text, QStringLiteral("as given"));
        EXPECT_TRUE(status().startsWith(QStringLiteral("Error %1 - ").arg(code)));
        EXPECT_FALSE(machine.line().portOpen());
    }
    EXPECT_EQ(reports.size(), 3);
}

TEST_F(ManagerTest, ADownloadWritesWhatMatchesAndNamesWhatIsLeft)
{
    addFile("b.srec", firmware("JHA2X", "MD \"RVKC9\",0\n"));
    create();
    EXPECT_EQ(load("a.srec,b.srec"), 0);
    play({logOn, fast, report, authorise, "< AF AF\n", layout, writeBlock, report, restart});
    QString text;
    EXPECT_EQ(manager->DownLoad(text), 37);
    EXPECT_EQ(text, QStringLiteral("RVKB1|0|5"));
    EXPECT_EQ(status(), QStringLiteral("Download successful"));
    EXPECT_EQ(lastErrorText(), QStringLiteral("0 Success"));
    EXPECT_TRUE(manager->FormatMessage(37).endsWith(QStringLiteral("any device:\r\nJHA2X\r\n")));
    EXPECT_EQ(reports.size(), 1);
}

TEST_F(ManagerTest, LaterFilesCloseTheTunnelsAndSkipWhatTheRadioRefuses)
{
    addFile("b.srec", firmware("JHA2F"));
    create();
    EXPECT_EQ(load("a.srec,b.srec"), 0);
    play({logOn, fast, report, authorise, "< 81 0B AF AF\n", "> 3A 01 00 00 C5 FE\n< AF AF\n",
          authorise, "< AF AF\n", layout, writeBlock, report, restart});
    QString text;
    EXPECT_EQ(manager->DownLoad(text), 37);
    EXPECT_TRUE(manager->FormatMessage(37).endsWith(QStringLiteral("\r\nJHA2F\r\n")));
}

TEST_F(ManagerTest, AnFpgaImageIsAskedForBeforeAnythingIsSent)
{
    addFile("fpga.srec", firmware("JVA1G1.00"));
    create();
    EXPECT_EQ(load("fpga.srec"), 0);
    machine.messages.expectQuestion(false);
    play({"@ ..\n"}); // opened, and closed again
    QString text;
    EXPECT_EQ(manager->DownLoad(text), 1);
    EXPECT_TRUE(
        machine.messages.questions().first().endsWith(QStringLiteral("Do you want to continue? ")));

    machine.messages.expectQuestion(true);
    machine.program.limit = std::chrono::seconds(1);
    play({"@ ..\n@ 19200\n"}); // special upgrade mode: no reset byte, the power cycle comes first
    EXPECT_EQ(manager->DownLoad(text), 21);
}

TEST_F(ManagerTest, TheBootApplicationIsSentWhenTheRadioAsksForIt)
{
    create();
    const auto asksForIt = "@ ..\n@ 19200\n> 5E\n< 56\n> 7E\n< 56 2A\n";
    QString text;
    play({asksForIt});
    EXPECT_EQ(manager->ReportConfigurations(text), 33);

    const QString path = QStringLiteral("C:\\Tools\\JVA2U.Srec");
    machine.files.files[path].content = "DW 8\nS0000000564100\nS206010000123400\n"; // no terminator
    play({asksForIt});
    EXPECT_EQ(manager->ReportConfigurations(text), 34) << "nothing of a damaged file is sent";
    EXPECT_TRUE(log("0_Download.log").contains("JVA2U.Srec: line 3: "));

    machine.files.files[path].content += "S804000000FB\n";
    play({asksForIt, "> 12\n> 34\n< AF AF\n", report, restart});
    EXPECT_EQ(manager->ReportConfigurations(text), 0);
}

TEST_F(ManagerTest, WhatArrivesInTheMiddleOfAnOperationIsRefused)
{
    create();
    QStringList results;
    QObject::connect(manager.get(), &clsDLManager::DownloadProgressUpdate, manager.get(), [&] {
        QString text;
        results.append(QString::number(manager->ReportConfigurations(text)));
        results.append(QString::number(manager->SetPort(QStringLiteral("7"), false)));
        results.append(QString::number(load("a.srec")));
        results.append(QString::number(manager->ResetRadio()));
        manager->setStayConnected(true);
        const auto running = logState().download;
        machine.lines.line = std::make_shared<ScriptedLine>(machine.time);
        clsDLManager other(machine.platform, windows, dialogs); // another client's
        EXPECT_EQ(logState().download, running);
        results.append(lastErrorText().section(u' ', 0, 0));
    });
    play({logOn, report, restart});
    const auto line = machine.lines.line;
    QString text;
    EXPECT_EQ(manager->ReportConfigurations(text), 0);
    machine.lines.line = line;
    EXPECT_EQ(results.join(u' '), QStringLiteral("13 13 13 13 0"));
    EXPECT_EQ(text, QStringLiteral("RVKB1|0|5"));
    EXPECT_FALSE(manager->StayConnected());
    EXPECT_EQ(machine.line().commPort(), 1);
}

TEST_F(ManagerTest, TheWindowMayGoInTheMiddle)
{
    create();
    play({logOn, "> 31 00 CE FF\n"});
    machine.time.after(std::chrono::seconds(3), [this] { manager->ShutDownUiLessMode(); });
    QString text;
    EXPECT_EQ(manager->ReportConfigurations(text), 1);
    EXPECT_FALSE(machine.line().portOpen());
    EXPECT_EQ(manager->ReportConfigurations(text), 9011) << "no window";
    EXPECT_FALSE(machine.line().portOpen());
    EXPECT_THROW(manager->setStayConnected(true), PlatformFailure);
    EXPECT_EQ(reports.size(), 2);
    EXPECT_EQ(manager->SetUIMode(false), 0) << "makes a new window";
}

TEST_F(ManagerTest, AKeptConnectionIsKept)
{
    create();
    manager->setStayConnected(true);
    play({logOn, report});
    QString text;
    EXPECT_EQ(manager->ReportConfigurations(text), 0);
    EXPECT_TRUE(machine.line().portOpen());
    // The radio is in upgrade mode already, deaf to the reset, and is found by probing.
    play({"@ 19200\n> 5E\n@ ..\n> 5E\n@ 19200\n@ 115200\n> 38 00 C7 FF\n@ 57600\n> 38 00 C7 FF\n"
          "@ 19200\n> 38 00 C7 FF\n< AF AF\n",
          report});
    EXPECT_EQ(manager->ReportConfigurations(text), 0);
    EXPECT_FALSE(log("0_Config.log").contains("END LOG"));
    manager->setStayConnected(false);
    EXPECT_FALSE(machine.line().portOpen());
    EXPECT_TRUE(log("0_Config.log").contains("END LOG"));
}

TEST_F(ManagerTest, ErasesByPositionAndReadsAgain)
{
    create();
    QString text;
    EXPECT_EQ(manager->EraseSelected(QStringLiteral("1|"), text), 9011) << "nothing reported yet";
    // A network with two digits: which memory device is 01200?
    constexpr auto twoConfigurations =
        "> 31 00 CE FF\n< 43 0A 00 52 00 56 00 4B 00 42 00 31 00 00 00 01 00 00 00 00 05 00 B6 8E\n"
        "< 43 0A 00 52 00 56 00 4B 00 42 00 31 00 00 00 01 00 00 00 00 0C 00 AF 8E\n< AF AF\n";
    play({logOn, twoConfigurations, restart});
    EXPECT_EQ(manager->ReportConfigurations(text), 0);

    constexpr auto refused = "Error 54 - Protocol - the data is not the correct length";
    constexpr auto erased = "Configuration(s) successfully erased";
    constexpr auto authoriseErasure =
        "> 42 06 05 00 00 52 00 56 00 4B 00 42 00 31 B7 93\n< AF AF\n";
    constexpr auto erase = "> 32 01 00 00 CD FE\n< AF AF\n> 33 01 00 00 CC FE\n< AF AF\n"
                           "> 39 01 00 00 C6 FE\n< AF AF\n";
    struct Erasure {
        const char* positions;
        std::vector<const char*> conversation; ///< between log-on and reading again
        const char* status;
    };
    const Erasure erasures[]{
        {"1|", {authoriseErasure, layout, erase}, erased},
        {"", {}, erased},
        {"1|2", {}, refused},
        {"1",
         {authoriseErasure, layout, "> 32 01 00 00 CD FE\n< 81 03 AF AF\n"},
         "Error 8103 - Response - flash write protected"},
        {"1",
         {authoriseErasure, "> 3E 00 C1 FF\n< 52 05 00 01 00 02 00 00 01 00 00 00 AC F7 AF AF\n"},
         "Error 8201 - The desired flash address does not exist.  The flash device may be smaller "
         "than required."},
        {"|1", {}, "Error 13 - Type mismatch"},
    };
    for (const Erasure& each : erasures) {
        play({logOn});
        for (const char* piece : each.conversation)
            play({piece});
        play({twoConfigurations, restart});
        EXPECT_EQ(manager->EraseSelected(QString::fromLatin1(each.positions), text), 0)
            << "the result is that of reading again";
        EXPECT_EQ(status().toStdString(), each.status);
    }
    EXPECT_EQ(reports.size(), 1) << "an erasure raises no event";

    // A port that fails to open takes nothing from what is known; a report that breaks off does.
    play({"! open 8002\n"});
    EXPECT_EQ(manager->ReportConfigurations(text), 11);
    play({"! open 8002\n"});
    EXPECT_EQ(manager->EraseSelected(QStringLiteral("1"), text), 11);
    play({logOn, "> 31 00 CE FF\n"
                 "< 43 0A 00 52 00 56 00 4B 00 42 00 31 00 00 00 01 00 00 00 00 05 00 B6 8E\n"
                 "! hangup\n"});
    EXPECT_EQ(manager->ReportConfigurations(text), 15);
    EXPECT_EQ(manager->EraseSelected(QStringLiteral("1"), text), 9011) << "nothing is sent";
}

TEST_F(ManagerTest, NothingOfAListWithARefusedFileIsWritten)
{
    addFile("bad.srec", "S1\n");
    addFile("cut.srec", firmware("JHA2F") + "S0000000414100\nS206010000123400\n");
    create();
    QString text;
    const std::pair<const char*, int> cases[]{{"cut.srec", 34},          {"a.srec,cut.srec", 34},
                                              {"cut.srec,a.srec", 34},   {"bad.srec,a.srec", 34},
                                              {"bad.srec", 34},          {"missing.srec", 33},
                                              {"bad.srec,gone.srec", 34}};
    for (const auto& [names, code] : cases) {
        (void)load(names);
        EXPECT_EQ(manager->DownLoad(text), code) << names;
        EXPECT_TRUE(status().startsWith(QStringLiteral("Error %1 - ").arg(code))) << names;
        EXPECT_TRUE(log("0_Download.log").trimmed().endsWith(status().toLatin1()));
    }
    play({logOn, fast, report, authorise, "< AF AF\n", layout, writeBlock, report, restart});
    (void)load("missing.srec,a.srec");
    EXPECT_EQ(manager->DownLoad(text), 0) << "a missing file is left out";
}

TEST_F(ManagerTest, FilesWhoseNamesDifferOnlyInCaseAreAllWritten)
{
    addFile("A.srec", firmware("JHA2A"));
    addFile("x", firmware("JHA2B") + firmware("JHA2C"));
    addFile("x1", firmware("JHA2D"));
    create();
    // None fits this radio: the list of what was not written names every image.
    for (const char* name : {"a.srec", "A.srec", "x", "x1"})
        machine.files.files[QStringLiteral("C:\\fw\\") + QString::fromLatin1(name)].content.replace(
            "RVKB1", "RVKC9");
    EXPECT_EQ(load("x1,a.srec,A.srec,x,a.srec"), 0);
    play({logOn, fast, report, report, restart});
    QString text;
    EXPECT_EQ(manager->DownLoad(text), 37);
    const QString left = manager->FormatMessage(37).section(u':', 1);
    EXPECT_EQ(left, QStringLiteral("\r\nJHA2B\r\nJHA2D\r\nJHA2A\r\nJHA2C\r\nJHA2F\r\n"));
}

TEST_F(ManagerTest, AFailedRestartIsNotHiddenByFilesLeftOver)
{
    addFile("b.srec", firmware("JHA2X", "MD \"RVKC9\",0\n"));
    create();
    EXPECT_EQ(load("b.srec"), 0);
    play({logOn, fast, report, report, "> 36 00 C9 FF\n@ 19200\n@ 9600\n> 5E\n"});
    QString text;
    EXPECT_EQ(manager->DownLoad(text), 21);
    EXPECT_EQ(status(), QStringLiteral("Error 21 - Radio did not reset"));
    EXPECT_TRUE(manager->filesLeftOver());
    EXPECT_TRUE(manager->FormatMessage(37).endsWith(QStringLiteral("any device:\r\nJHA2X\r\n")));
}

TEST_F(ManagerTest, TheNextOperationMayStartFromTheEndOfTheOneBefore)
{
    create();
    int nested = -1;
    QObject::connect(manager.get(), &clsDLManager::ReportConfigurationsUpdate, manager.get(), [&] {
        if (nested < 0)
            nested = load("a.srec");
    });
    play({logOn, report, restart});
    QString text;
    EXPECT_EQ(manager->ReportConfigurations(text), 0);
    EXPECT_EQ(nested, 0);
}

TEST_F(ManagerTest, TheLastFileOfAListDecidesItsCode)
{
    addFile("bad.srec", "S1\n");
    create();
    const std::pair<const char*, int> cases[]{{"a.srec", 0},
                                              {"missing.srec", 33},
                                              {"missing.srec,a.srec", 0},
                                              {"a.srec,missing.srec", 33},
                                              {"bad.srec", 34},
                                              {"bad.srec,a.srec", 0}};
    for (const auto& [names, code] : cases)
        EXPECT_EQ(load(names), code) << names;
    EXPECT_EQ(status(), QStringLiteral("Ready"));
    EXPECT_EQ(load("missing.srec"), 33);
    EXPECT_EQ(status(), QStringLiteral("Error 33 - File does not exist"));
    EXPECT_FALSE(machine.settings.values.contains(QStringLiteral("LastFile")));
    (void)manager->SetUIMode(true);
    (void)load("a.srec");
    EXPECT_EQ(machine.settings.values[QStringLiteral("LastFile")],
              QStringLiteral("C:\\fw\\a.srec"));
    EXPECT_TRUE(reports.isEmpty());
}

TEST_F(ManagerTest, ATaskRunsAfterTheCallAndAlwaysEnds)
{
    create();
    EXPECT_FALSE(manager->AsyncTaskProcess(eNone));
    EXPECT_FALSE(manager->AsyncTaskProcess(static_cast<enmAsyncTaskID>(4)));
    EXPECT_FALSE(manager->AsyncTaskBusy());

    EXPECT_TRUE(manager->AsyncTaskProcess(eReportConfigurations, QStringLiteral("as given")));
    EXPECT_FALSE(manager->AsyncTaskProcess(eReportConfigurations)) << "one at a time";
    EXPECT_TRUE(manager->AsyncTaskBusy());
    EXPECT_TRUE(reports.isEmpty());
    play({"! open 8005\n"});
    machine.time.pause(std::chrono::minutes(1));
    EXPECT_FALSE(manager->AsyncTaskBusy());
    EXPECT_EQ(reports, QStringList(QStringLiteral("as given")));
    EXPECT_EQ(lastErrorText(), QStringLiteral("12 Serial port in use by another application"));

    EXPECT_TRUE(manager->AsyncTaskProcess(eLoadFiles, QStringLiteral("C:\\fw\\a.srec")));
    EXPECT_EQ(load("missing.srec"), 33);
    EXPECT_TRUE(manager->AsyncTaskBusy()) << "a direct operation swallows no task";
    machine.time.pause(std::chrono::seconds(1));
    EXPECT_EQ(lastErrorText(), QStringLiteral("0 Success"));
    EXPECT_FALSE(manager->AsyncTaskBusy());
    EXPECT_EQ(reports.size(), 1);
}

} // namespace
} // namespace fldc
