#include "ProtocolTest.h"

#include "app/services/LogState.h"
#include "firmware/clsFile.h"

namespace fldc {
namespace {

// ---- What is said, and how it ends ------------------------------------------------------------

/// Asks the protocol for something while the line follows the script; what it showed or gave back
/// besides its code.
using Request = QString (*)(ProtocolTest&, const char* script);

QString closeTunnels(ProtocolTest& test, const char* script)
{
    test.open(script);
    test.protocol.CloseAllTunnels(test.port);
    return {};
}

/// The speed that is kept, and those that were shown.
template <int index>
QString negotiate(ProtocolTest& test, const char* script)
{
    test.open(script);
    test.protocol.NegotiateBaud(test.window, test.port, index);
    return test.protocol.PreviousBaudRate() + u':' + test.window.baud.join(u' ');
}

/// The boot file, with "!" when it is required, and the events.
template <int mode>
QString logOn(ProtocolTest& test, const char* script)
{
    test.machine.program.limit = std::chrono::seconds(10);
    test.protocol.SetUpgradeMode(mode);
    test.line().play(script);
    QString bootFile;
    bool required = true;
    test.protocol.LogRadioIntoUpgradeMode(test.window, test.port, bootFile, required, false);
    if (required && test.code() == 0)
        bootFile += u'!';
    return bootFile + test.listener.events.join(u' ');
}

QString report(ProtocolTest& test, const char* script)
{
    test.open(script);
    QString text = QStringLiteral("before");
    test.protocol.GetConfiguration(test.window, test.port, test.radio, text);
    return text;
}

QString reportToUser(ProtocolTest& test, const char* script)
{
    test.window.user = true;
    return report(test, script);
}

template <bool deviceSet>
QString authorise(ProtocolTest& test, const char* script)
{
    test.open(script);
    test.protocol.AuthoriseSetMemory(test.port, QStringLiteral("AB"), QStringLiteral("1A01"),
                                     deviceSet);
    return {};
}

/// The speeds that were shown.
QString restart(ProtocolTest& test, const char* script)
{
    test.open(script);
    test.protocol.RestartRadio(test.window, test.port);
    return test.window.baud.join(u' ');
}

struct Conversation {
    Request request;
    const char* script;
    int code;
    const char* result = "";
};

class Conversations : public ProtocolTest, public testing::WithParamInterface<Conversation> {};

TEST_P(Conversations, EndWithTheirCode)
{
    const auto& [request, script, expected, result] = GetParam();
    EXPECT_EQ(request(*this, script), QString::fromLatin1(result)) << script;
    EXPECT_EQ(code(), expected) << script;
}

#define DONE "\n< AF AF\n"
#define FRAME "> 3A 01 00 00 C5 FE\n"
#define READY "> 38 00 C7 FF\n"
#define PROBES "@ 115200\n" READY "@ 57600\n" READY "@ 19200\n" READY "@ 9600\n" READY
#define SILENT_START "@ 19200\n> 5E\n@ 9600\n> 5E\n@ 19200\n"
#define ASK "> 31 00 CE FF\n"
#define RECORD "< 43 06 00 52 00 00 00 01 00 00 00 00 01 00 BB A6\n"
#define NEWER "> 42 03 1A 01 00 41 00 42 A3 78"
#define OLDER "> 40 02 00 41 00 42 BF 7A"
#define TARGET "> 3A 01 1A 01 AB FD" DONE
#define UNKNOWN "\n< 80 01 AF AF\n"
#define REFUSED "\n< 81 0A AF AF\n"

// clang-format off
INSTANTIATE_TEST_SUITE_P(Replies, Conversations, testing::ValuesIn(std::vector<Conversation>{
    {closeTunnels, FRAME "< AF AF", 0},
    {closeTunnels, FRAME "< AE AE\n<1900 AE AE\n<1900 AF AF", 0},
    {closeTunnels, FRAME "", 42}, {closeTunnels, FRAME "< AF", 42},
    {closeTunnels, FRAME "< 81 04 AF AF", 8104}, {closeTunnels, FRAME "< 81 0A AF AF", 8110},
    {closeTunnels, FRAME "< 81 0B AF AF", 8111}, {closeTunnels, FRAME "< 81 0C AF AF", 8112},
    {closeTunnels, FRAME "< 81 0D AF AF", 51}, {closeTunnels, FRAME "< 81 0E AF AF", 0},
    {closeTunnels, FRAME "< 81 0F AF AF", 8113}, {closeTunnels, FRAME "< 13 37 AF AF", 51},
    {closeTunnels, FRAME "< 43 00 BC FF", 51}, // a record of configurations confirms nothing else
    // Faults that a repeat may cure: three attempts in all, and no fourth.
    {closeTunnels, FRAME "< 80 02 AF AF\n" FRAME "< 80 02 AF AF\n" FRAME "< 80 02 AF AF", 55},
    {closeTunnels, FRAME "< 80 01 AF AF\n" FRAME "< 80 03 AF AF\n" FRAME "< AF AF", 0},
    {closeTunnels, FRAME "< 80 03 AF AF\n" FRAME "< 81 06 AF AF", 8106},
    {closeTunnels, FRAME "< 80 01 AF AF\n" FRAME "", 42},
    {closeTunnels, FRAME "< AE AE 81 04 AF AF\n" FRAME "< AE AE 81 04 AF AF\n" FRAME
                   "< AE AE 81 04 AF AF", 59},
    {closeTunnels, FRAME "< AE AE 00 03 AF AF\n" FRAME "< AE AE AE AE AF AF", 0},
    {closeTunnels, FRAME "! hangup", 15}, {closeTunnels, "! write 5", 15},
}));

INSTANTIATE_TEST_SUITE_P(Speeds, Conversations, testing::ValuesIn(std::vector<Conversation>{
    {negotiate<1>, "> 30 01 00 60 CF 9E\n@ 115200\n< AF AF", 0, "115200:115200"},
    {negotiate<4>, "> 30 01 00 30 CF CE\n@ 57600\n" READY "< AF AF", 0, "57600:57600"},
    {negotiate<2>, "> 30 01 00 10 CF EE\n@ 19200\n< AF AF", 0, "19200:19200"},
    // Silent at the new speed, but still there at the old one: stays there.
    {negotiate<0>, "> 30 01 00 60 CF 9E\n@ 115200\n" READY "@ 19200\n" READY "< AF AF", 0,
                   "19200:19200"},
    {negotiate<0>, "> 30 01 00 60 CF 9E\n@ 115200\n" READY "@ 19200\n< 81 01 AF AF", 0,
                   "19200:19200"},
    // Lost at the first speed, found at the next.
    {negotiate<0>, "> 30 01 00 60 CF 9E\n@ 115200\n" READY "@ 19200\n" READY
                   "> 30 01 00 30 CF CE\n@ 57600\n< AF AF", 0, "57600:57600"},
    {negotiate<3>, "> 30 01 00 08 CF F6\n@ 9600\n" READY "@ 19200\n" READY "", 56, "19200:"},
    {negotiate<3>, "> 30 01 00 08 CF F6\n! open 8005\n", 56, "19200:"},
    {negotiate<5>, "", 56, "19200:"}, {negotiate<-1>, "", 56, "19200:"},
    // A restart, and the speeds at which it was looked for.
    {restart, "> 36 00 C9 FF\n@ 19200\n< 76", 0, "19200"},
    {restart, "> 36 00 C9 FF\n@ 19200\n@ 9600\n> 5E\n< 56", 0, "19200 9600"},
    {restart, "> 36 00 C9 FF\n@ 19200\n< AF AF\n@ 9600\n> 5E", 21, "19200 9600"},
}));

INSTANTIATE_TEST_SUITE_P(LogOns, Conversations, testing::ValuesIn(std::vector<Conversation>{
    // Its own software, the boot application, a short identifier.
    {logOn<0>, "@ 19200\n> 5E\n< 76\n> 7E\n< 52 56 2A\n< 3F AF AF", 0},
    {logOn<0>, "@ 19200\n> 5E\n< 56\n> 7E\n< 00 52 56 4B 43 34 2A", 0, "C:\\Tools\\JHA2U.Srec!"},
    {logOn<0>, "@ 19200\n> 5E\n< 56\n> 7E\n< 56 2A", 0, "C:\\Tools\\JVA2U.Srec!"},
    // 56, but takes part; no identifier; no end of the log-on.
    {logOn<0>, "@ 19200\n> 5E\n< 56\n> 7E\n< 2A\n<700 3F\n< AF AF", 0},
    {logOn<0>, "@ 19200\n> 5E\n< 76\n> 7E\n", 22},
    {logOn<0>, "@ 19200\n> 5E\n< 76\n> 7E\n< 2A 3F", 42},
    // 12 A3 holds the digits 2A, but no byte "*".
    {logOn<0>, "@ 19200\n> 5E\n< 56\n> 7E\n< 12 A3", 22},
    // Silent everywhere; in upgrade mode already.
    {logOn<0>, SILENT_START PROBES, 42},
    {logOn<0>, SILENT_START "@ 115200\n" READY "@ 57600\n" READY "< AF AF", 0},
    // Answers at 9600: wants a power cycle, which does not come, or comes with F1.
    {logOn<0>, "@ 19200\n> 5E\n@ 9600\n> 5E\n< 76\n@ 19200", 21, "power cycle"},
    {logOn<0>, "@ 19200\n> 5E\n@ 9600\n> 5E\n< 56\n@ 19200\n<3000 AF AF\n@ 115200\n" READY
               "@ 57600\n" READY "@ 19200\n" READY "< AF AF", 0, "power cycle"},
    // Special: the power cycle is asked for once, however often it is looked for.
    {logOn<1>, "@ 19200\n<7000 56\n> 3C 5E 23\n< 2A 3F AF AF", 0, "power cycle"},
    {logOn<1>, "@ 19200\n", 21, "power cycle"},
    // The port: in use, gone, lost on the way.
    {logOn<0>, "! open 8005", 12}, {logOn<0>, "! open 8002", 11},
    {logOn<0>, "@ 19200\n> 5E\n! hangup", 11}, {logOn<1>, "@ 19200\n! hangup", 11, "power cycle"},
    {logOn<0>, "@ 19200\n> 5E\n< 76\n> 7E\n! hangup", 22},
}));

INSTANTIATE_TEST_SUITE_P(Queries, Conversations, testing::ValuesIn(std::vector<Conversation>{
    {report, ASK "< AF AF", 0, ""}, {reportToUser, ASK "< AF AF", 0, "before"},
    {report, ASK "", 42, "before"}, {report, ASK RECORD, 42, "before"},
    {report, ASK "< 43 06 00 52 00 00 00 01 00 00 00 00 01 00 BB A7\n", 55, "before"},
    {report, ASK RECORD "< 81 02 AF AF", 8102, "before"}, {report, ASK "! hangup", 15, "before"},
    {authorise<false>, NEWER DONE, 0}, {authorise<false>, NEWER, 42},
    {authorise<false>, NEWER "\n< 81 0F AF AF\n", 8113},
    {authorise<false>, NEWER REFUSED OLDER DONE TARGET, 0},
    {authorise<true>, NEWER REFUSED OLDER DONE, 0},
    {authorise<false>, NEWER REFUSED OLDER "\n< 81 0F AF AF\n", 8113},
    {authorise<false>, NEWER UNKNOWN NEWER UNKNOWN NEWER UNKNOWN
                       OLDER UNKNOWN OLDER UNKNOWN OLDER UNKNOWN TARGET, 0},
}));
// clang-format on

TEST_F(ProtocolTest, ABusyListNamesThePositionsOfFaultyBlocksInTheLog)
{
    logState().enabled = true;
    logState().download = std::make_shared<clsLogFile>(machine.platform);
    logState().download->setFileName(QStringLiteral("log"));
    logState().download->OpenLogFile(QStringLiteral("1"));
    closeTunnels(*this, FRAME "< AE AE 00 03 AE AE 81 05 AF AF\n" FRAME "< AF AF");
    const QByteArray log = machine.files.files[QStringLiteral("log")].content;
    EXPECT_EQ(log.count("Error (Block id in position 0103)\r\n"), 1);
    EXPECT_EQ(log.count("Command (Set Memory Target) ': \r\n"), 2);
    EXPECT_EQ(log.count(" Sent     : 3A010000C5FE\r\n"), 2);
    EXPECT_EQ(log.count(" Received : AEAE0003AEAE8105AFAF\r\n"), 1);
}

TEST_F(ProtocolTest, RepliesMayArriveByteByByte)
{
    line().split(1, std::chrono::milliseconds(1500)); // each byte restarts the idle time-out
    closeTunnels(*this, FRAME "< AE AE 81 06 AF AF\n" FRAME "< AE AE AF AF");
    EXPECT_EQ(code(), 0);
}

TEST_F(ProtocolTest, ACancellationEndsTheWaitAndNothingMoreIsSent)
{
    machine.time.after(std::chrono::milliseconds(300), [this] { cancellation->request(); });
    closeTunnels(*this, FRAME);
    EXPECT_EQ(code(), 1);
    EXPECT_EQ(machine.time.monotonic(), std::chrono::milliseconds(300));
    protocol.CloseAllTunnels(port);
    protocol.RestartRadio(window, port);
    EXPECT_EQ(code(), 1);
}

TEST_F(ProtocolTest, FallsBackToTheSpeedAtWhichTheRadioWasFound)
{
    EXPECT_EQ(logOn<0>(*this, SILENT_START "@ 115200\n" READY "@ 57600\n" READY "< AF AF\n"),
              QString());
    ASSERT_EQ(code(), 0);
    line().play("> 30 01 00 60 CF 9E\n@ 115200\n" READY "@ 57600\n" READY "< AF AF\n");
    protocol.NegotiateBaud(window, port, 1);
    EXPECT_EQ(code(), 0);
    EXPECT_EQ(window.baud.last(), QStringLiteral("57600"));
}

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
    open("> 01\n> AF\n> FF\n< AF AF");
    protocol.SendUpgradeApplication(window, port, *fileOf({{0, "\x01\xAF\xFF"}}, false));
    EXPECT_EQ(code(), 0);
    EXPECT_EQ(window.progress, (std::vector<int>{33, 67, 100}));
    EXPECT_EQ(window.fileNames.last(), QStringLiteral("Upgrade Application - JHA2F"));

    line().play("> 01\n! write 5");
    protocol.SendUpgradeApplication(window, port, *fileOf({{0, "\x01\xAF\xFF"}}, false));
    EXPECT_EQ(code(), 15);
}

TEST_F(ProtocolTest, ReadsConfigurationsUpToTheEndOfTheReport)
{
    // Two records in one go behind busy words, with AF AF and AE AE as data, then one more.
    EXPECT_EQ(report(*this, ASK "< AE AE 43 07 00 4A 00 41 00 00 AF AF AE AE 00 01 05 02 59 0D\n"
                                "< AE AE 43 06 00 52 00 00 00 01 00 00 00 00 01 00\n"
                                "<11900 BB A6\n< AF AF"),
              QStringLiteral("JA|1|5\tR|0|1"));
    EXPECT_EQ(code(), 0);
    EXPECT_EQ(radio.Configurations()->Item(1)->ConfigurationAddress(),
              static_cast<std::int32_t>(0xAFAFAEAE));
    EXPECT_EQ(radio.Configurations()->Item(1)->DeviceID(), 2);
    EXPECT_EQ(listener.events, QStringList(QStringLiteral("0  0")));
    EXPECT_EQ(window.listsShown, 1);
}

TEST_F(ProtocolTest, FallsBackToTheOlderFlashStructure)
{
    open("> 3E 00 C1 FF\n< 52 0A 00 01 00 01 00 00 01 00 00 01 00 00 00 00 00 00 00 00 "
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

#define UNLOCK "> 32 01 00 01 CD FD" DONE
#define ERASE "> 33 01 00 01 CC FD" DONE
#define LOCK "> 39 01 00 01 C6 FD" DONE
#define PLAIN_ADDRESS "> 34 02 00 01 00 00 CB FC" DONE
#define PLAIN_DATA "> 35 02 01 02 03 04 C6 F7" DONE

TEST_F(Flash, WritesPlainDataBetweenUnlockAndLock)
{
    line().play(UNLOCK ERASE PLAIN_ADDRESS PLAIN_DATA LOCK);
    write(*fileOf({{65536, "\x01\x02\x03\x04"}}, false));
    EXPECT_EQ(code(), 0);
    EXPECT_EQ(window.status.join(u'|'),
              QStringLiteral("Checking file against flash information...|Unlocking flash...|"
                             "Erasing flash...|Downloading data...|Locking flash..."));
    EXPECT_EQ(listener.events, QStringList(QStringLiteral("100 JHA2F 2")));
    EXPECT_EQ(window.progress.back(), 100);
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
#define NO_COMPRESSION "> 3C 02 00 01 00 00 C3 FC" UNKNOWN
    line().play(UNLOCK ERASE NO_COMPRESSION NO_COMPRESSION NO_COMPRESSION PLAIN_ADDRESS
                "> 35 FF.." DONE "> 35 02.." DONE LOCK);
    write(*fileOf({{65536, QByteArray(514, 'A')}}, true));
    EXPECT_EQ(code(), 0);
    EXPECT_EQ(listener.events.join(u','), QStringLiteral("50 JHA2F 2,100 JHA2F 2"));
}

// clang-format off
TEST_F(Flash, FailuresEndItWhereTheyHappen)
{
#define LOCKED_WRITE ERASE PLAIN_ADDRESS "> 35 02 01 02 03 04 C6 F7\n< 81 04 AF AF\n"
    const auto file = fileOf({{65536, "\x01\x02\x03\x04"}}, false);
    const auto cutOff = fileOf({{65536, "\x01\x02"}, {65600, "\x01\x02"}}, false);
    cutOff->Definitiontables()->Add(65700);
    cutOff->Definitiontables()->Datablocks(2)->Add(u"0102");
    const std::tuple<std::shared_ptr<clsFile>, const char*, int> cases[]{
        {file, "> 32 01 00 01 CD FD\n< 81 03 AF AF", 8103},
        {file, UNLOCK "> 33 01 00 01 CC FD\n< 81 04 AF AF", 8104},
        // No data follow an address that the radio did not take.
        {fileOf({{65536, QByteArray(100, 'A')}}, true), UNLOCK ERASE
         "> 3C 02 00 01 00 00 C3 FC\n< 81 06 AF AF", 8106},
        {file, UNLOCK ERASE "> 34 02 00 01 00 00 CB FC\n", 42},
        // A block that locks itself is written again twice at most.
        {file, UNLOCK LOCKED_WRITE LOCKED_WRITE ERASE PLAIN_ADDRESS PLAIN_DATA LOCK, 0},
        {file, UNLOCK LOCKED_WRITE LOCKED_WRITE LOCKED_WRITE, 8104},
        // The last bytes of block 1, two more of block 2, then block 0, then block 1 again: each is
        // named once, in the order of the file.
        {fileOf({{0x1FFFE, "\x01\x02\x03\x04"}, {0, "\x01\x02"}, {65536, "\x01\x02"}}, false),
         "> 32 03 00 01 00 02 00 00 CD F9" DONE "> 33 03 00 01 00 02 00 00 CC F9" DONE
         "> 34 02 00 01 FF FE CB FE", 42},
        // Nothing is sent for a file that does not fit, or has nothing in it.
        {fileOf({{0x2FFFE, "\x01\x02\x03\x04"}}, false), "", 8201}, {fileOf({}, false), "", 52},
        {cutOff, "", 53}, // a run that was not read to its end
        {file, UNLOCK ERASE PLAIN_ADDRESS PLAIN_DATA "> 39 01 00 01 C6 FD\n! hangup", 15}};
    for (const auto& [each, script, expected] : cases) {
        line().play(script);
        write(*each);
        EXPECT_EQ(code(), expected) << script;
        EXPECT_EQ(line().rest(), QString()) << script;
    }
    radio.setFlashBlocks(std::make_shared<colFlashBlocks>());
    write(*file);
    EXPECT_EQ(code(), 8201);
}
// clang-format on

} // namespace
} // namespace fldc
