#include "ProtocolTest.h"

#include "app/services/LogState.h"
#include "firmware/clsFile.h"

#include <functional>

namespace fldc {
namespace {

// ---- Exchange -------------------------------------------------------------------------------

struct ExchangeCase {
    const char* script; ///< what CloseAllTunnels makes of it
    int code;
};

class Exchange : public ProtocolTest, public testing::WithParamInterface<ExchangeCase> {};

TEST_P(Exchange, ClassifiesAndRepeats)
{
    open();
    line().play(GetParam().script);
    protocol.CloseAllTunnels(port);
    EXPECT_EQ(code(), GetParam().code);
}

#define FRAME "> 3A 01 00 00 C5 FE\n"
INSTANTIATE_TEST_SUITE_P(
    Replies, Exchange,
    testing::Values(
        ExchangeCase{FRAME "< AF AF", 0},
        ExchangeCase{FRAME "< AE AE\n<1900 AE AE\n<1900 AF AF", 0}, ExchangeCase{FRAME "", 42},
        ExchangeCase{FRAME "< AF", 42}, ExchangeCase{FRAME "< 81 04 AF AF", 8104},
        ExchangeCase{FRAME "< 81 0A AF AF", 8110}, ExchangeCase{FRAME "< 81 0B AF AF", 8111},
        ExchangeCase{FRAME "< 81 0C AF AF", 8112}, ExchangeCase{FRAME "< 81 0D AF AF", 51},
        ExchangeCase{FRAME "< 81 0E AF AF", 0}, ExchangeCase{FRAME "< 81 0F AF AF", 8113},
        ExchangeCase{FRAME "< 13 37 AF AF", 51},
        // Faults that a repeat may cure: three attempts in all, and no fourth.
        ExchangeCase{FRAME "< 80 02 AF AF\n" FRAME "< 80 02 AF AF\n" FRAME "< 80 02 AF AF", 55},
        ExchangeCase{FRAME "< 80 01 AF AF\n" FRAME "< 80 03 AF AF\n" FRAME "< AF AF", 0},
        ExchangeCase{FRAME "< 80 03 AF AF\n" FRAME "< 81 06 AF AF", 8106},
        ExchangeCase{FRAME "< 80 01 AF AF\n" FRAME "", 42},
        ExchangeCase{FRAME "< AE AE 81 04 AF AF\n" FRAME "< AE AE 81 04 AF AF\n" FRAME
                           "< AE AE 81 04 AF AF",
                     59},
        ExchangeCase{FRAME "< AE AE 00 03 AF AF\n" FRAME "< AE AE AE AE AF AF", 0},
        ExchangeCase{FRAME "! hangup", 15}, ExchangeCase{"! write 5", 15}));

TEST_F(ProtocolTest, ABusyListNamesThePositionsOfFaultyBlocksInTheLog)
{
    logState().enabled = true;
    logState().download = std::make_shared<clsLogFile>(machine.platform);
    logState().download->setFileName(QStringLiteral("log"));
    logState().download->OpenLogFile(QStringLiteral("1"));
    open();
    line().play(FRAME "< AE AE 00 03 AE AE 81 05 AF AF\n" FRAME "< AF AF");
    protocol.CloseAllTunnels(port);
    const QByteArray log = machine.files.files[QStringLiteral("log")].content;
    EXPECT_EQ(log.count("Error (Block id in position 0103)\r\n"), 1);
    EXPECT_EQ(log.count("Command (Set Memory Target) ': \r\n"), 2);
    EXPECT_EQ(log.count(" Sent     : 3A010000C5FE\r\n"), 2);
    EXPECT_EQ(log.count(" Received : AEAE0003AEAE8105AFAF\r\n"), 1);
    logState() = {};
}

TEST_F(ProtocolTest, RepliesMayArriveByteByByte)
{
    open();
    line().split(1, std::chrono::milliseconds(1500)); // each byte restarts the idle time-out
    line().play(FRAME "< AE AE 81 06 AF AF\n" FRAME "< AE AE AF AF");
    protocol.CloseAllTunnels(port);
    EXPECT_EQ(code(), 0);
}

TEST_F(ProtocolTest, ACancellationEndsTheWaitAndNothingMoreIsSent)
{
    open();
    line().play(FRAME);
    machine.time.after(std::chrono::milliseconds(300), [this] { cancellation->request(); });
    protocol.CloseAllTunnels(port);
    EXPECT_EQ(code(), 1);
    EXPECT_EQ(machine.time.monotonic().count(), 300);
    protocol.CloseAllTunnels(port);
    protocol.RestartRadio(window, port);
    EXPECT_EQ(code(), 1);
}

// ---- Line speed -----------------------------------------------------------------------------

struct SpeedCase {
    int index;
    const char* script;
    int code;
    const char* previous;
    const char* baud;
};

class Speed : public ProtocolTest, public testing::WithParamInterface<SpeedCase> {};

TEST_P(Speed, IsAgreedOn)
{
    open();
    line().play(GetParam().script);
    protocol.NegotiateBaud(window, port, GetParam().index);
    EXPECT_EQ(code(), GetParam().code);
    EXPECT_EQ(protocol.PreviousBaudRate(), QString::fromLatin1(GetParam().previous));
    EXPECT_EQ(window.baud.join(u' '), QString::fromLatin1(GetParam().baud));
}

#define READY "> 38 00 C7 FF\n"
INSTANTIATE_TEST_SUITE_P(
    Negotiation, Speed,
    testing::Values(
        SpeedCase{1, "> 30 01 00 60 CF 9E\n@ 115200\n< AF AF", 0, "115200", "115200"},
        SpeedCase{4, "> 30 01 00 30 CF CE\n@ 57600\n" READY "< AF AF", 0, "57600", "57600"},
        SpeedCase{2, "> 30 01 00 10 CF EE\n@ 19200\n< AF AF", 0, "19200", "19200"},
        // Silent at the new speed, but still there at the old one: stays there.
        SpeedCase{0, "> 30 01 00 60 CF 9E\n@ 115200\n" READY "@ 19200\n" READY "< AF AF", 0,
                  "19200", "19200"},
        SpeedCase{0, "> 30 01 00 60 CF 9E\n@ 115200\n" READY "@ 19200\n< 81 01 AF AF", 0, "19200",
                  "19200"},
        // Lost at the first speed, found at the next.
        SpeedCase{0,
                  "> 30 01 00 60 CF 9E\n@ 115200\n" READY "@ 19200\n" READY
                  "> 30 01 00 30 CF CE\n@ 57600\n< AF AF",
                  0, "57600", "57600"},
        SpeedCase{3, "> 30 01 00 08 CF F6\n@ 9600\n" READY "@ 19200\n" READY "", 56, "19200", ""},
        SpeedCase{3, "> 30 01 00 08 CF F6\n! open 8005\n", 56, "19200", ""},
        SpeedCase{5, "", 56, "19200", ""}, SpeedCase{-1, "", 56, "19200", ""}));

// ---- Upgrade mode ---------------------------------------------------------------------------

struct LogOnCase {
    const char* what;
    bool special;
    const char* script;
    int code;
    const char* bootFile; ///< empty: none required
};

class LogOn : public ProtocolTest, public testing::WithParamInterface<LogOnCase> {};

TEST_P(LogOn, Unattended)
{
    machine.program.limit = std::chrono::seconds(10);
    protocol.SetUpgradeMode(GetParam().special ? 1 : 0);
    line().play(GetParam().script);
    QString bootFile;
    bool required = true;
    protocol.LogRadioIntoUpgradeMode(window, port, bootFile, required, false);
    EXPECT_EQ(code(), GetParam().code) << GetParam().what;
    EXPECT_EQ(bootFile, QString::fromLatin1(GetParam().bootFile)) << GetParam().what;
    EXPECT_EQ(required && code() == 0, bootFile != QString()) << GetParam().what;
}

#define PROBES "@ 115200\n" READY "@ 57600\n" READY "@ 19200\n" READY "@ 9600\n" READY
#define SILENT_START "@ 19200\n> 5E\n@ 9600\n> 5E\n@ 19200\n"
INSTANTIATE_TEST_SUITE_P(
    Radios, LogOn,
    testing::Values(
        LogOnCase{"own software", false, "@ 19200\n> 5E\n< 76\n> 7E\n< 52 56 2A\n< 3F AF AF", 0,
                  ""},
        LogOnCase{"boot application", false, "@ 19200\n> 5E\n< 56\n> 7E\n< 00 52 56 4B 43 34 2A", 0,
                  "C:\\Tools\\JHA2U.Srec"},
        LogOnCase{"short identifier", false, "@ 19200\n> 5E\n< 56\n> 7E\n< 56 2A", 0,
                  "C:\\Tools\\JVA2U.Srec"},
        LogOnCase{"56, but takes part", false, "@ 19200\n> 5E\n< 56\n> 7E\n< 2A\n<700 3F\n< AF AF",
                  0, ""},
        LogOnCase{"no identifier", false, "@ 19200\n> 5E\n< 76\n> 7E\n", 22, ""},
        LogOnCase{"no end of log-on", false, "@ 19200\n> 5E\n< 76\n> 7E\n< 2A 3F", 42, ""},
        // 12 A3 holds the digits 2A, but no byte "*".
        LogOnCase{"identifier without a star", false, "@ 19200\n> 5E\n< 56\n> 7E\n< 12 A3", 22, ""},
        LogOnCase{"silent everywhere", false, SILENT_START PROBES, 42, ""},
        LogOnCase{"in upgrade mode already", false,
                  SILENT_START "@ 115200\n" READY "@ 57600\n" READY "< AF AF", 0, ""},
        LogOnCase{"answers at 9600, is not power-cycled", false,
                  "@ 19200\n> 5E\n@ 9600\n> 5E\n< 76\n@ 19200", 21, ""},
        LogOnCase{"answers at 9600, then with F1", false,
                  "@ 19200\n> 5E\n@ 9600\n> 5E\n< 56\n@ 19200\n<3000 AF AF\n@ 115200\n" READY
                  "@ 57600\n" READY "@ 19200\n" READY "< AF AF",
                  0, ""},
        LogOnCase{"special", true, "@ 19200\n<5000 76\n> 3C 5E 23\n< 2A 3F AF AF", 0, ""},
        LogOnCase{"special, never cycled", true, "@ 19200\n", 21, ""},
        LogOnCase{"port in use", false, "! open 8005", 12, ""},
        LogOnCase{"port gone", false, "! open 8002", 11, ""},
        LogOnCase{"port lost before 9600", false, "@ 19200\n> 5E\n! hangup", 11, ""},
        LogOnCase{"lost in the power cycle, found again", true, "@ 19200\n! hangup", 11, ""},
        LogOnCase{"port lost in the log-on", false, "@ 19200\n> 5E\n< 76\n> 7E\n! hangup", 22,
                  ""}));

TEST_F(ProtocolTest, ThePowerCycleOfAUserCanBeGivenUp)
{
    line().play("@ 19200\n> 5E\n@ 9600\n> 5E\n< 56\n@ 19200\n");
    machine.time.after(std::chrono::seconds(20), [this] {
        EXPECT_TRUE(listener.dialogShown);
        listener.cancelled = true;
    });
    QString bootFile;
    bool required = true;
    protocol.LogRadioIntoUpgradeMode(window, port, bootFile, required, true);
    EXPECT_EQ(code(), 1);
    EXPECT_EQ(listener.dialogMessage,
              QStringLiteral("Please hold the F1 Key and Power Cycle the Radio to continue ..."));
    EXPECT_FALSE(listener.dialogShown);
    EXPECT_EQ(listener.events, QStringList());
}

TEST_F(ProtocolTest, TheUnattendedPowerCycleIsAskedForOnce)
{
    protocol.SetUpgradeMode(1);
    line().play("@ 19200\n<30000 56\n> 3C 5E 23\n< 2A 3F AF AF");
    QString bootFile;
    bool required = true;
    protocol.LogRadioIntoUpgradeMode(window, port, bootFile, required, false);
    EXPECT_EQ(code(), 0);
    EXPECT_FALSE(required);
    EXPECT_EQ(listener.events, QStringList(QStringLiteral("power cycle")));
}

TEST_F(ProtocolTest, FallsBackToTheSpeedAtWhichTheRadioWasFound)
{
    line().play("@ 19200\n> 5E\n@ 9600\n> 5E\n@ 19200\n@ 115200\n> 38 00 C7 FF\n"
                "@ 57600\n> 38 00 C7 FF\n< AF AF\n");
    QString bootFile;
    bool required = true;
    protocol.LogRadioIntoUpgradeMode(window, port, bootFile, required, false);
    ASSERT_EQ(code(), 0);
    line().play("> 30 01 00 60 CF 9E\n@ 115200\n> 38 00 C7 FF\n@ 57600\n> 38 00 C7 FF\n< AF AF\n");
    protocol.NegotiateBaud(window, port, 1);
    EXPECT_EQ(code(), 0);
    EXPECT_EQ(window.baud.last(), QStringLiteral("57600"));
}

std::shared_ptr<clsFile> fileOf(std::vector<std::pair<int, QByteArray>> tables, bool compress)
{
    auto file = std::make_shared<clsFile>();
    file->setTagName(QStringLiteral("JHA2F"));
    file->setIntNumberOfBits(8);
    for (const auto& [address, data] : tables) {
        const auto collection = file->Definitiontables();
        collection->Add(address);
        collection->SetLength(static_cast<std::int32_t>(data.size()));
        const auto blocks = collection->Datablocks(collection->Count() - 1);
        blocks->Add(QString::fromLatin1(data.toHex()));
        if (compress)
            blocks->CompressData();
        else
            blocks->FinishUncompressed();
    }
    return file;
}

TEST_F(ProtocolTest, TheBootApplicationGoesByteByByte)
{
    open();
    line().play("> 01\n> AF\n> FF\n< AF AF");
    protocol.SendUpgradeApplication(window, port, *fileOf({{0, "\x01\xAF\xFF"}}, false));
    EXPECT_EQ(code(), 0);
    EXPECT_EQ(window.progress, (std::vector<int>{33, 67, 100}));
    EXPECT_EQ(window.fileNames.last(), QStringLiteral("Upgrade Application - JHA2F"));

    line().play("> 01\n! write 5");
    protocol.SendUpgradeApplication(window, port, *fileOf({{0, "\x01\xAF\xFF"}}, false));
    EXPECT_EQ(code(), 15);
}

// ---- Queries --------------------------------------------------------------------------------

TEST_F(ProtocolTest, ReadsConfigurationsUpToTheEndOfTheReport)
{
    open();
    // Two records in one go behind busy words, with AF AF and AE AE as data, then one more.
    line().play("> 31 00 CE FF\n"
                "< AE AE 43 07 00 4A 00 41 00 00 AF AF AE AE 00 01 05 02 59 0D\n"
                "< AE AE 43 06 00 52 00 00 00 01 00 00 00 00 01 00\n"
                "<11900 BB A6\n< AF AF");
    QString report = QStringLiteral("before");
    protocol.GetConfiguration(window, port, radio, report);
    EXPECT_EQ(code(), 0);
    EXPECT_EQ(report, QStringLiteral("JA|1|5\tR|0|1"));
    EXPECT_EQ(radio.Configurations()->Item(1)->ConfigurationAddress(),
              static_cast<std::int32_t>(0xAFAFAEAE));
    EXPECT_EQ(radio.Configurations()->Item(1)->DeviceID(), 2);
    EXPECT_EQ(listener.events, QStringList(QStringLiteral("0  0")));
    EXPECT_EQ(window.listsShown, 1);
}

struct ReportCase {
    const char* answer;
    int code;
    const char* report;
};

class Report : public ProtocolTest, public testing::WithParamInterface<ReportCase> {};

TEST_P(Report, EndsWithItsCode)
{
    open();
    line().play(QStringLiteral("> 31 00 CE FF\n") + QString::fromLatin1(GetParam().answer));
    QString report = QStringLiteral("before");
    protocol.GetConfiguration(window, port, radio, report);
    EXPECT_EQ(code(), GetParam().code);
    EXPECT_EQ(report, QString::fromLatin1(GetParam().report));
}

INSTANTIATE_TEST_SUITE_P(
    Answers, Report,
    testing::Values(ReportCase{"< AF AF", 0, ""}, ReportCase{"", 42, "before"},
                    ReportCase{"< 43 06 00 52 00 00 00 01 00 00 00 00 01 00 BB A6\n", 42, "before"},
                    ReportCase{"< 43 06 00 52 00 00 00 01 00 00 00 00 01 00 BB A7\n", 55, "before"},
                    ReportCase{"< 43 06 00 52 00 00 00 01 00 00 00 00 01 00 BB A6\n< 81 02 AF AF",
                               8102, "before"},
                    ReportCase{"! hangup", 15, "before"}));

TEST_F(ProtocolTest, AUserKeepsTheReportTextAsGiven)
{
    open();
    window.user = true;
    line().play("> 31 00 CE FF\n< AF AF");
    QString report = QStringLiteral("before");
    protocol.GetConfiguration(window, port, radio, report);
    EXPECT_EQ(report, QStringLiteral("before"));
}

TEST_F(ProtocolTest, FallsBackToTheOlderFlashStructure)
{
    open();
    line().play("> 3E 00 C1 FF\n< 52 0A 00 01 00 01 00 00 01 00 00 01 00 00 00 00 00 00 00 00 "
                "00 00 00 00 AB F3\n< AF AF\n"
                "> 37 00 C8 FF\n< 46 04 00 01 00 00 00 00 80 00 39 FA AF AF");
    protocol.GetFlashBlocks(port, radio);
    EXPECT_EQ(code(), 0);
    ASSERT_EQ(radio.FlashBlocks()->Count(), 1);
    EXPECT_EQ(radio.FlashBlocks()->Item(1)->StartAddress(), 65536);

    line().play("> 3E 00 C1 FF\n< 81 07 AF AF\n> 37 00 C8 FF\n");
    protocol.GetFlashBlocks(port, radio);
    EXPECT_EQ(code(), 42);
    EXPECT_EQ(radio.FlashBlocks()->Count(), 1) << "a reply that never came replaces nothing";
}

// ---- Flash ----------------------------------------------------------------------------------

class Flash : public ProtocolTest {
protected:
    Flash()
    {
        for (const char* start : {"00000000", "00010000", "00020000"})
            radio.FlashBlocks()->Add(static_cast<std::int16_t>(radio.FlashBlocks()->Count()),
                                     QString::fromLatin1(start), QStringLiteral("00010000"), {});
        open();
    }
    void write(const clsFile& file)
    {
        protocol.WriteDataToFlash(window, port, file, *radio.FlashBlocks(), 2);
    }
};

#define DONE "\n< AF AF\n"
#define UNLOCK "> 32 01 00 01 CD FD" DONE
#define ERASE "> 33 01 00 01 CC FD" DONE
#define LOCK "> 39 01 00 01 C6 FD" DONE
#define PLAIN_ADDRESS "> 34 02 00 01 00 00 CB FC" DONE
#define PLAIN_DATA "> 35 02 01 02 03 04 C6 F7" DONE
#define STATUS_UP_TO_WRITE                                                                         \
    "Checking file against flash information...|Unlocking flash...|Erasing flash...|"              \
    "Downloading data..."

TEST_F(Flash, WritesPlainDataBetweenUnlockAndLock)
{
    line().play(UNLOCK ERASE PLAIN_ADDRESS PLAIN_DATA LOCK);
    write(*fileOf({{65536, "\x01\x02\x03\x04"}}, false));
    EXPECT_EQ(code(), 0);
    EXPECT_EQ(window.status.join(u'|'), QStringLiteral(STATUS_UP_TO_WRITE "|Locking flash..."));
    EXPECT_EQ(listener.events, QStringList(QStringLiteral("100 JHA2F 2")));
    EXPECT_EQ(window.progress.back(), 100);
}

TEST_F(Flash, NamesEachBlockOnceInTheOrderOfTheFile)
{
    // The last bytes of block 1, two more of block 2, then block 0, then block 1 again.
    line().play("> 32 03 00 01 00 02 00 00 CD F9" DONE "> 33 03 00 01 00 02 00 00 CC F9" DONE
                "> 34 02 00 01 FF FE CB FE..");
    write(*fileOf({{0x1FFFE, "\x01\x02\x03\x04"}, {0, "\x01\x02"}, {65536, "\x01\x02"}}, false));
    EXPECT_EQ(code(), 42) << "the script ends here";
}

TEST_F(Flash, SendsCompressedDataInChunksAndCountsThem)
{
    QByteArray data;
    for (int i = 0; i < 6000; ++i)
        data.append(static_cast<char>((i * i) >> 5));
    const auto file = fileOf({{65536, data}}, true);
    const auto blocks = file->Definitiontables()->Datablocks(0);
    const int chunks = (blocks->CompressedCount() + 509) / 510;
    ASSERT_GT(chunks, 1);
    line().play(UNLOCK ERASE "> 3C 02 00 01 00 00 C3 FC" DONE);
    for (int i = 1; i < chunks; ++i)
        line().play("> 3D FF.." DONE);
    line().play("> 3D.." DONE LOCK);
    write(*file);
    EXPECT_EQ(code(), 0);
    EXPECT_EQ(listener.events.size(), chunks);
    EXPECT_EQ(listener.events.last(), QStringLiteral("100 JHA2F 2"));
}

TEST_F(Flash, AnOldRadioGetsPlainDataAfterThreeRefusals)
{
#define REFUSED "> 3C 02 00 01 00 00 C3 FC\n< 80 01 AF AF\n"
    line().play(UNLOCK ERASE REFUSED REFUSED REFUSED PLAIN_ADDRESS "> 35 FF.." DONE
                                                                   "> 35 02.." DONE LOCK);
    write(*fileOf({{65536, QByteArray(514, 'A')}}, true));
    EXPECT_EQ(code(), 0);
    EXPECT_EQ(listener.events.join(u','), QStringLiteral("50 JHA2F 2,100 JHA2F 2"));
}

TEST_F(Flash, NoDataFollowAnAddressThatTheRadioDidNotTake)
{
    line().play(UNLOCK ERASE "> 3C 02 00 01 00 00 C3 FC\n< 81 06 AF AF");
    write(*fileOf({{65536, QByteArray(100, 'A')}}, true));
    EXPECT_EQ(code(), 8106);
    line().play(UNLOCK ERASE "> 34 02 00 01 00 00 CB FC\n");
    write(*fileOf({{65536, "\x01\x02"}}, false));
    EXPECT_EQ(code(), 42);
}

TEST_F(Flash, ABlockThatLocksItselfIsWrittenAgainTwiceAtMost)
{
#define LOCKED_WRITE ERASE PLAIN_ADDRESS "> 35 02 01 02 03 04 C6 F7\n< 81 04 AF AF\n"
    line().play(UNLOCK LOCKED_WRITE LOCKED_WRITE ERASE PLAIN_ADDRESS PLAIN_DATA LOCK);
    write(*fileOf({{65536, "\x01\x02\x03\x04"}}, false));
    EXPECT_EQ(code(), 0);
    line().play(UNLOCK LOCKED_WRITE LOCKED_WRITE LOCKED_WRITE);
    write(*fileOf({{65536, "\x01\x02\x03\x04"}}, false));
    EXPECT_EQ(code(), 8104);
}

TEST_F(Flash, FailuresEndItWhereTheyHappen)
{
    const auto file = fileOf({{65536, "\x01\x02\x03\x04"}}, false);
    line().play("> 32 01 00 01 CD FD\n< 81 03 AF AF");
    write(*file);
    EXPECT_EQ(code(), 8103);
    line().play(UNLOCK "> 33 01 00 01 CC FD\n< 81 04 AF AF");
    write(*file);
    EXPECT_EQ(code(), 8104);
    line().play(UNLOCK ERASE PLAIN_ADDRESS PLAIN_DATA "> 39 01 00 01 C6 FD\n! hangup");
    write(*file);
    EXPECT_EQ(code(), 15);
}

TEST_F(Flash, SendsNothingForAFileThatDoesNotFit)
{
    write(*fileOf({{0x2FFFE, "\x01\x02\x03\x04"}}, false));
    EXPECT_EQ(code(), 8201);
    write(*fileOf({}, false));
    EXPECT_EQ(code(), 52);
    const auto cutOff = fileOf({{65536, "\x01\x02"}, {65600, "\x01\x02"}}, false);
    cutOff->Definitiontables()->Add(65700);
    cutOff->Definitiontables()->Datablocks(2)->Add(u"0102");
    write(*cutOff);
    EXPECT_EQ(code(), 53) << "a run that was not read to its end";
    radio.setFlashBlocks(std::make_shared<colFlashBlocks>());
    write(*fileOf({{65536, "\x01\x02"}}, false));
    EXPECT_EQ(code(), 8201);
}

TEST_F(Flash, ErasesTheBlockOfAConfiguration)
{
    radio.Configurations()->Add(QStringLiteral("0041000000010004"
                                               "0000"),
                                {});
    radio.Configurations()->Add(QStringLiteral("0041000000FF0000"
                                               "0000"),
                                {});
    line().play(UNLOCK ERASE LOCK);
    protocol.EraseFlashBlock(window, port, radio, 1);
    EXPECT_EQ(code(), 0);
    line().play(UNLOCK "> 33 01 00 01 CC FD\n< 81 03 AF AF");
    protocol.EraseFlashBlock(window, port, radio, 1);
    EXPECT_EQ(code(), 8103);
    protocol.EraseFlashBlock(window, port, radio, 2); // in no block: nothing is sent
    EXPECT_EQ(code(), 8201);
    EXPECT_THROW(protocol.EraseFlashBlock(window, port, radio, 3), PlatformFailure);
}

// ---- Authorisation and restart --------------------------------------------------------------

struct AuthorisationCase {
    bool deviceSet;
    const char* script;
    int code;
};

class Authorisation : public ProtocolTest, public testing::WithParamInterface<AuthorisationCase> {};

TEST_P(Authorisation, FallsBackToOlderForms)
{
    open();
    line().play(GetParam().script);
    protocol.AuthoriseSetMemory(port, QStringLiteral("AB"), QStringLiteral("1A01"),
                                GetParam().deviceSet);
    EXPECT_EQ(code(), GetParam().code);
}

#define NEWER "> 42 03 1A 01 00 41 00 42 A3 78"
#define OLDER "> 40 02 00 41 00 42 BF 7A"
#define TARGET "> 3A 01 1A 01 AB FD" DONE
#define UNKNOWN "\n< 80 01 AF AF\n"
INSTANTIATE_TEST_SUITE_P(
    Forms, Authorisation,
    testing::Values(AuthorisationCase{false, NEWER DONE, 0},
                    AuthorisationCase{false, NEWER "\n< 81 0A AF AF\n" OLDER DONE TARGET, 0},
                    AuthorisationCase{true, NEWER "\n< 81 0A AF AF\n" OLDER DONE, 0},
                    AuthorisationCase{false,
                                      NEWER UNKNOWN NEWER UNKNOWN NEWER UNKNOWN OLDER UNKNOWN OLDER
                                          UNKNOWN OLDER UNKNOWN TARGET,
                                      0},
                    AuthorisationCase{false, NEWER "\n< 81 0F AF AF\n", 8113},
                    AuthorisationCase{false, NEWER "\n< 81 0A AF AF\n" OLDER "\n< 81 0F AF AF\n",
                                      8113},
                    AuthorisationCase{false, NEWER, 42}));

TEST_F(ProtocolTest, RestartsTheRadioAtEitherSpeed)
{
    open();
    line().play("> 36 00 C9 FF\n@ 19200\n< 76");
    protocol.RestartRadio(window, port);
    EXPECT_EQ(code(), 0);
    line().play("> 36 00 C9 FF\n@ 19200\n@ 9600\n> 5E\n< 56");
    protocol.RestartRadio(window, port);
    EXPECT_EQ(code(), 0);
    EXPECT_EQ(window.baud.join(u' '), QStringLiteral("19200 19200 9600"));
    line().play("@ 19200");
    port.SetPortParameters(QStringLiteral("19200"), 1);
    line().play("> 36 00 C9 FF\n@ 19200\n< AF AF\n@ 9600\n> 5E");
    protocol.RestartRadio(window, port);
    EXPECT_EQ(code(), 21);
}

} // namespace
} // namespace fldc
