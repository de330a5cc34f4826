#include "FirmwareReading.h"
#include "shared/LastError.h"
#include "support/VirtualPlatform.h"

#include <gtest/gtest.h>

namespace fldc::test {

namespace {

// Records whose header text is the name, data of two bytes at address 0, and the end.
#define HA "S005000048410D\n"
#define HB "S005000048420D\n"
#define JWA2 "S00700004A57413200\n"
#define DATA "S1050000000100\n"
#define END "S9030000FC\n"

struct ValidFile {
    const char* text;
    const char* images; ///< as describe() gives them
};

// Checksums are arbitrary on purpose.
const ValidFile validFiles[]{
    // An address jump starts a run, forwards and backwards.
    {"DW8\n" HA DATA "S1050002020300\nS1050040040500\nS1050020060700\n" END,
     "f 'HA' 8 S1/S9 0+4(4)=00010203 64+2(2)=0405 32+2(2)=0607\n"},
    // An odd run of bytes is filled with FF, unless it is the last.
    {"DW 8\n" HA "S106000001020300\nS10500400A0B00\nS1060060070809FF\n" END,
     "f 'HA' 8 S1/S9 0+4(4)=010203FF 64+2(2)=0A0B 96+3(3)=07080900\n"},
    // Addresses count 16-bit units, which are the default; an odd run of them is not filled.
    {HA "S11310000001020304050607AAABACADAEAFB0B100\nS1051008C0C100\nS1052000D0D100\n" END,
     "f 'HA' 16 S1/S9 4096+9(18)=0001020304050607AAABACADAEAFB0B1C0C1 8192+1(2)=D0D1\n"},
    // Bytes beyond the last whole unit are dropped.
    {HA "S106000001020300\nS1050001040500\n" END, "f 'HA' 16 S1/S9 0+2(4)=01020405\n"},
    // Units of 32 bits.
    {"DW 32\n" HA "S30D0000010001020304050607080C\nS309000001020A0B0C0D00\n"
     "S30A0000020011223344550000\nS70500000000FA\n",
     "f 'HA' 32 S3/S7 256+3(12)=01020304050607080A0B0C0D 512+1(4)=11223344\n"},
    {"DW 8\n" HA "S206ABCDEF010200\nS804000000FB\n", "f 'HA' 8 S2/S8 11259375+2(2)=0102\n"},
    // JWA2 makes units of bytes and pads an odd start; the run can still be odd and be filled.
    {JWA2 "S1051001010200\nS10410030300\nS1052000040500\nS1052002060700\n" END,
     "f 'JWA2' 8 S1/S9 4096+4(4)=FF010203 8192+4(4)=04050607\n"},
    {JWA2 "S1051001010200\nS1051005030400\n" END,
     "f 'JWA2' 8 S1/S9 4096+4(4)=FF0102FF 4100+3(3)=FF030400\n"},
    // With wider units it pads a byte and counts a unit; without it an odd start is not padded.
    {"DW 16\n" JWA2 "S1051001010200\n" END, "f 'JWA2' 16 S1/S9 4096+2(3)=FF010200\n"},
    {"DW 8\n" HA "S1051001010200\n" END, "f 'HA' 8 S1/S9 4097+2(2)=0102\n"},
    // Images one after another; width and targets are those of one image.
    {"DW 8\nMD \"HW1\",1\n" HA DATA END "\n// next\n" HB DATA END JWA2
     "S206000000050600\nS804000000FB\nCI what follows the last image\n\n",
     "f 'HA' 8 S1/S9 <HW1:1> 0+2(2)=0001\nf1 'HB' 16 S1/S9 0+1(2)=0001\n"
     "f11 'JWA2' 8 S2/S8 0+2(2)=0506\n"},
    // Targets are those collected before the S0 record; a width behind it comes too late.
    {"MD \"RVKB1\", 2\nMD no comma \" no target\nMD\"RV,KC4\" ,x\nMD x\"A\"\"B\",-7\n" HA
     "DW 8\nMD \"LATE\",9\n" DATA END HB DATA END,
     "f 'HA' 16 S1/S9 <RVKB1:2> <RV,KC4:0> <A:-7> 0+1(2)=0001\nf1 'HB' 16 S1/S9 0+1(2)=0001\n"},
    // A latest target without hardware text means no targets.
    {"DW 8\nMD \"A\",1\nMD \"\",2\n" HA DATA END, "f 'HA' 8 S1/S9 0+2(2)=0001\n"},
    // Comments, CI lines and empty lines around the data.
    {"// \"a, b\n\nCI,\nDW 16 \n\n" HA "// x\n\nCI\n" DATA END "//\n",
     "f 'HA' 16 S1/S9 0+1(2)=0001\n"},
    // A second S0 record replaces the one before; the width found for that one stays.
    {JWA2 HA DATA END, "f 'HA' 8 S1/S9 0+2(2)=0001\n"},
    // Addresses are signed and wrap around; the last 16-bit one is not negative.
    {"DW 8\n" HA "S3077FFFFFFE010200\nS30780000000030400\nS307FFFFFFFE050600\nS30700000000070800\n"
     "S70500000000FA\nDW 8\n" HA "S105FFFE010200\n" END,
     "f 'HA' 8 S3/S7 2147483646+4(4)=01020304 -2+4(4)=05060708\n"
     "f1 'HA' 8 S1/S9 65534+2(2)=0102\n"},
    // Lower-case digits; blanks around the header text go.
    {"DW 8\nS00a0000202048206120200d\nS107abcdabcdefab00\nS9030000fc\n",
     "f 'H a' 8 S1/S9 43981+4(4)=ABCDEFAB\n"},
    // The checksum is not looked at.
    {"DW 8\nS0050000484199\nS10500000001ZZ\nS9\n", "f 'HA' 8 S1/S9 0+2(2)=0001\n"},
    // Data cut short are taken as they are, their length by the count; a record may have none.
    {"DW 8\n" HA "S1071000AABB\nS1071004CCDDEEFF00\nS10720000102\nS103200400\n" END,
     "f 'HA' 8 S1/S9 4096+8(6)=AABBCCDDEEFF 8192+4(2)=0102\n"},
};

} // namespace

TEST(SRecordReader, ReadsImagesAlikeInEitherWayAndWithEveryLineEnd)
{
    for (const ValidFile& file : validFiles) {
        SCOPED_TRACE(file.text);
        for (const char* lineEnd : {"\r\n", "\n", "\r"}) {
            const QByteArray text = QByteArray(file.text).replace('\n', lineEnd);
            // The end of the file ends a line, too.
            for (const QByteArray& whole : {text, text.trimmed(), madeSlow(text)}) {
                const Outcome outcome = readFirmware(whole);
                EXPECT_EQ(describe(*outcome.images), file.images);
                EXPECT_EQ(outcome.lastError, 0);
                EXPECT_FALSE(outcome.problem) << outcome.problem->text().toStdString();
            }
        }
    }
}

TEST(SRecordReader, ShowsFieldsThatCannotBeReadAndGoesOn)
{
    struct Case {
        const char* text;
        QStringList boxes;
        const char* images;
    };
    const QString mismatch = QStringLiteral("Error 13 Type mismatch");
    const QString argument = QStringLiteral("Error 5 Invalid procedure call or argument");
    const Case cases[]{
        {"DW 8\n" HA "S105x000010200\nS9", {mismatch}, "f 'HA' 8 S1/S9 0+2(2)=0102\n"},
        {"DW 8\n" HA "S1051000010200\nS1G51002030400\nS1021002\nS1051002030400\nS9",
         {mismatch, argument},
         "f 'HA' 8 S1/S9 4096+4(4)=01020304\n"},
        {"DW 8\nS00500004x410D\nS307FFFFFFFE010200\nS3\nS307000000000304\nS7",
         {mismatch, mismatch, mismatch},
         "f '' 8 S3/S7 -2+4(4)=01020304\n"},
        {"DW 8\nS003000FC\nS1051000010200\nS9", {argument}, "f '' 8 S1/S9 4096+2(2)=0102\n"},
    };
    for (const Case& one : cases) {
        const Outcome outcome = readFirmware(one.text, Compression::Zlib, one.boxes);
        EXPECT_EQ(describe(*outcome.images), one.images);
        EXPECT_EQ(outcome.lastError, 0);
    }
}

TEST(SRecordReader, KeepsEveryByteOfLongRuns)
{
    // Long enough for the data to outgrow their room many times, with records of all lengths.
    QByteArray payload;
    QByteArray text("DW 8\n" HA);
    for (int i = 0; payload.size() < 200'000; ++i) {
        const qsizetype length = 1 + i * 7 % 250;
        const QByteArray address = QByteArray::number(payload.size(), 16).rightJustified(8, '0');
        QByteArray record;
        for (qsizetype j = 0; j < length; ++j)
            record.append(static_cast<char>((payload.size() + j) * 31 / 7 + j));
        payload += record;
        text += "S3" + QByteArray(1, static_cast<char>(length + 5)).toHex() + address +
                record.toHex() + "00\n";
    }
    text += "S70500000000FA\n";
    for (const Compression compression : {Compression::Zlib, Compression::None}) {
        const Outcome outcome = readFirmware(text, compression);
        ASSERT_EQ(outcome.images->Count(), 1);
        const auto blocks = outcome.images->Item(1)->Definitiontables()->Datablocks(0);
        EXPECT_EQ(blocks->data(), payload + QByteArray(payload.size() % 2, '\0'));
        if (compression == Compression::Zlib)
            EXPECT_EQ(inflated(*blocks), payload);
        else
            EXPECT_EQ(blocks->CompressedCount(), -1);
    }
}

TEST(NotValidFile, EndsWith34AndSaysWhereAndWhy)
{
    struct Case {
        const char* text;
        int line;           ///< where reading stops
        const char* reason; ///< part of it
        long images = 0;    ///< what stays
    };
    const Case cases[]{
        {"", 0, "ends before"},
        {"// nothing\n\n", 2, "ends before"},
        {HA, 1, "ends before", 1},
        {" " HA, 1, "\" S\""},
        {"s005000048410D\n", 1, "\"s0\""},
        {HA "S5030001FB\n" DATA END, 2, "\"S5\"", 1},
        {HA DATA END END, 4, "\"S9\"", 1},
        // Inside the data
        {HA DATA, 2, "ends inside", 1},
        {HA DATA "\n" END, 3, "empty line", 1},
        {HA DATA "// comment\n" END, 3, "//", 1},
        {HA DATA "S206000002020300\n" END, 3, "S2", 1},
        {HA DATA "S8\n", 3, "S8", 1},
        {HA DATA "T1050001020300\n" END, 3, "T1", 1},
        {HA DATA HA DATA END, 3, "S0", 1},
        {HA DATA "S10500000g0100\n" END, 3, "not hexadecimal", 1},
        {HA DATA "S10500010 0100\n" END, 3, "not hexadecimal", 1},
        // Nothing to compress at an address: no data digits, or fewer than one unit's
        {HA "S103000000\n" END, 3, "without data", 1},
        {HA "S107300\n" DATA END, 3, "without data", 1},
        {"DW 32\n" HA "S105000001020300\nS105001001020300\n" END, 4, "without data", 1},
        {HA "S3097FFFFFFF0001020300\nS7", 2, "without a start", 1},
        // Order of the parts
        {DATA HA DATA END, 1, "before the S0 record"},
        {HA DATA END DATA END, 4, "before the S0 record", 1},
        {HA DATA END HA, 4, "ends before", 2},
        {HA DATA END HA DATA, 5, "ends inside", 2},
        // Header lines
        {"DW 12\n" HA DATA END, 1, "width"},
        {"DW\n" HA DATA END, 1, "width"},
        {"DW 65544\n" HA DATA END, 1, "width"},
        {"MD RVKB1,2\n" HA DATA END, 1, "quotes"},
        {"MD \"A|B\",2\n" HA DATA END, 2, "bar"},
    };
    for (const Case& one : cases) {
        SCOPED_TRACE(one.text);
        const Outcome outcome = readFirmware(one.text);
        EXPECT_EQ(outcome.lastError, 34);
        ASSERT_TRUE(outcome.problem);
        EXPECT_EQ(outcome.problem->line, one.line);
        EXPECT_TRUE(outcome.problem->reason.contains(QLatin1StringView(one.reason)))
            << outcome.problem->reason.toStdString();
        EXPECT_EQ(outcome.images->Count(), one.images);
        for (const auto& image : outcome.images->items())
            EXPECT_TRUE(image->Rejected());
    }
    EXPECT_EQ(readFirmware(HA DATA "S5030001FB").problem->text(),
              QStringLiteral("line 3: a line of type S5 inside the data"));
}

TEST(NotValidFile, MayBeAbsent)
{
    VirtualPlatform machine;
    const auto absent =
        SRecordReader(machine.files, std::make_shared<colFiles>()).read(QStringLiteral("x"));
    ASSERT_TRUE(absent);
    EXPECT_EQ(lastError().number(), 34);
    EXPECT_EQ(absent->text(), QStringLiteral("x: No such file or directory"));
}

} // namespace fldc::test
