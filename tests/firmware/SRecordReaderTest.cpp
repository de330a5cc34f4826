#include "FirmwareReading.h"

#include <gtest/gtest.h>

#include <zlib.h>

namespace fldc::test {

namespace {

using Lines = std::vector<std::string>;

struct ValidFile {
    const char* what;
    Lines lines;
    std::string images; ///< as describe() gives them
};

// Header texts: 4841 "HA", 4A574132 "JWA2". Checksums are arbitrary on purpose.
const std::vector<ValidFile> validFiles{
    {"records that continue each other are one run",
     {"DW 8", "S005000048410D", "S1050000000100", "S1050002020300", "S1050004040500", "S9030000FC"},
     "f 'HA' 8 S1/S9 0+6(6)=000102030405\n"},
    {"an address jump starts a run, forwards and backwards",
     {"DW8", "S005000048410D", "S1050000000100", "S1050040020300", "S1050020040500", "S9030000FC"},
     "f 'HA' 8 S1/S9 0+2(2)=0001 64+2(2)=0203 32+2(2)=0405\n"},
    {"an odd run of bytes is filled with FF, unless it is the last",
     {"DW 8", "S005000048410D", "S106000001020300", "S10500400A0B00", "S1060060070809FF",
      "S9030000FC"},
     "f 'HA' 8 S1/S9 0+4(4)=010203FF 64+2(2)=0A0B 96+3(3)=07080900\n"},
    {"addresses count 16-bit units, which are the default; an odd run of them is not filled",
     {"S005000048410D", "S11310000001020304050607AAABACADAEAFB0B100", "S1051008C0C100",
      "S1052000D0D100", "S9030000FC"},
     "f 'HA' 16 S1/S9 4096+9(18)=0001020304050607AAABACADAEAFB0B1C0C1 8192+1(2)=D0D1\n"},
    {"bytes beyond the last whole unit are dropped",
     {"S005000048410D", "S106000001020300", "S1050001040500", "S9030000FC"},
     "f 'HA' 16 S1/S9 0+2(4)=01020405\n"},
    {"32-bit units, S3 records",
     {"DW 32", "S005000048410D", "S30D0000010001020304050607080C", "S309000001020A0B0C0D00",
      "S30A0000020011223344550000", "S70500000000FA"},
     "f 'HA' 32 S3/S7 256+3(12)=01020304050607080A0B0C0D 512+1(4)=11223344\n"},
    {"S2 records",
     {"DW 8", "S005000048410D", "S206ABCDEF010200", "S804000000FB"},
     "f 'HA' 8 S2/S8 11259375+2(2)=0102\n"},
    {"JWA2 makes units of bytes and pads an odd start",
     {"S00700004A57413200", "S1051001010200", "S10410030300", "S1052000040500", "S1052002060700",
      "S9030000FC"},
     "f 'JWA2' 8 S1/S9 4096+4(4)=FF010203 8192+4(4)=04050607\n"},
    {"a padded run can still be odd and be filled",
     {"S00700004A57413200", "S1051001010200", "S1051005030400", "S9030000FC"},
     "f 'JWA2' 8 S1/S9 4096+4(4)=FF0102FF 4100+3(3)=FF030400\n"},
    {"JWA2 with wider units pads a byte and counts a unit",
     {"DW 16", "S00700004A57413200", "S1051001010200", "S9030000FC"},
     "f 'JWA2' 16 S1/S9 4096+2(3)=FF010200\n"},
    {"an odd start is not padded without JWA2",
     {"DW 8", "S005000048410D", "S1051001010200", "S9030000FC"},
     "f 'HA' 8 S1/S9 4097+2(2)=0102\n"},
    {"images one after another; width and targets are those of one image",
     {"DW 8", "MD \"HW1\",1", "S005000048410D", "S1050000000100", "S9030000FC", "", "// next",
      "S005000048420D", "S1050000000100", "S9030000FC", "S00700004A57413200", "S206000000050600",
      "S804000000FB", "CI what follows the last image", ""},
     "f 'HA' 8 S1/S9 <HW1:1> 0+2(2)=0001\n"
     "f1 'HB' 16 S1/S9 0+1(2)=0001\n"
     "f11 'JWA2' 8 S2/S8 0+2(2)=0506\n"},
    {"targets are those collected before the S0 record",
     {"MD \"RVKB1\", 2", "MD no comma \" no target", "MD\"RV,KC4\" ,x", "MD x\"A\"\"B\",-7", "DW 8",
      "S005000048410D", "MD \"LATE\",9", "S1050000000100", "S9030000FC", "S005000048420D",
      "S1050000000100", "S9030000FC"},
     "f 'HA' 8 S1/S9 <RVKB1:2> <RV,KC4:0> <A:-7> 0+2(2)=0001\nf1 'HB' 16 S1/S9 0+1(2)=0001\n"},
    {"a latest target without hardware text means no targets",
     {"DW 8", "MD \"A\",1", "MD \"\",2", "S005000048410D", "S1050000000100", "S9030000FC"},
     "f 'HA' 8 S1/S9 0+2(2)=0001\n"},
    {"comments, CI lines and empty lines around the data",
     {"// \"a, b", "", "CI,", "DW 16 ", "", "S005000048410D", "// x", "", "CI", "S1050000000100",
      "S9030000FC", "//"},
     "f 'HA' 16 S1/S9 0+1(2)=0001\n"},
    {"an S0 record before the data replaces the one before; the width found for that one stays",
     {"S00700004A57413200", "S005000048410D", "S1050000000100", "S9030000FC"},
     "f 'HA' 8 S1/S9 0+2(2)=0001\n"},
    {"a DW line behind the S0 record comes too late",
     {"S005000048410D", "DW 8", "S1050000000100", "S9030000FC", "S005000048420D", "S1050000000100",
      "S9030000FC"},
     "f 'HA' 16 S1/S9 0+1(2)=0001\nf1 'HB' 16 S1/S9 0+1(2)=0001\n"},
    {"addresses are signed and wrap around; the last 16-bit one is not negative",
     {"DW 8", "S005000048410D", "S3077FFFFFFE010200", "S30780000000030400", "S307FFFFFFFE050600",
      "S30700000000070800", "S70500000000FA", "DW 8", "S005000048410D", "S105FFFE010200",
      "S9030000FC"},
     "f 'HA' 8 S3/S7 2147483646+4(4)=01020304 -2+4(4)=05060708\n"
     "f1 'HA' 8 S1/S9 65534+2(2)=0102\n"},
    {"lower-case digits; blanks around the header text go",
     {"DW 8", "S00a0000202048206120200d", "S107abcdabcdefab00", "S9030000fc"},
     "f 'H a' 8 S1/S9 43981+4(4)=ABCDEFAB\n"},
    {"the checksum is not looked at",
     {"DW 8", "S0050000484199", "S10500000001ZZ", "S9"},
     "f 'HA' 8 S1/S9 0+2(2)=0001\n"},
    {"data cut short are taken as they are, their length by the count",
     {"DW 8", "S005000048410D", "S1071000AABB", "S1071004CCDDEEFF00", "S10720000102", "S9030000FC"},
     "f 'HA' 8 S1/S9 4096+8(6)=AABBCCDDEEFF 8192+4(2)=0102\n"},
    {"a record without data in a run",
     {"DW 8", "S005000048410D", "S1050000000100", "S103000200", "S1050002020300", "S9030000FC"},
     "f 'HA' 8 S1/S9 0+4(4)=00010203\n"},
};

// The same file with something behind every data record, which keeps it from the fast way.
Lines withTrailingBlanks(Lines lines)
{
    for (std::string& line : lines) {
        const bool isData =
            line.starts_with("S1") || line.starts_with("S2") || line.starts_with("S3");
        const bool isWhole =
            isData && line.size() == 4 + 2 * std::stoul(line.substr(2, 2), nullptr, 16);
        if (isWhole)
            line += ' ';
    }
    return lines;
}

} // namespace

TEST(SRecordReader, ReadsImages)
{
    for (const ValidFile& file : validFiles) {
        const Lines slowLines = withTrailingBlanks(file.lines);
        for (const char* lineEnd : {"\r\n", "\n", "\r"}) {
            for (const Lines& lines : {file.lines, slowLines}) {
                SCOPED_TRACE(std::string(file.what) + (&lines == &slowLines ? ", slowly" : ""));
                const QByteArray text = joined(lines, lineEnd);
                // The end of the file ends a line, too.
                for (const QByteArray& whole : {text, text.trimmed()}) {
                    const Outcome outcome = readFirmware(whole);
                    EXPECT_EQ(describe(*outcome.images), file.images);
                    EXPECT_EQ(outcome.lastError, 0);
                    EXPECT_FALSE(outcome.problem) << outcome.problem->text().toStdString();
                }
            }
        }
    }
}

TEST(SRecordReader, ShowsFieldsThatCannotBeReadAndGoesOn)
{
    struct Case {
        Lines lines;
        QStringList boxes;
        std::string images;
    };
    const QString mismatch = QStringLiteral("Error 13 Type mismatch");
    const QString argument = QStringLiteral("Error 5 Invalid procedure call or argument");
    const std::vector<Case> cases{
        {{"DW 8", "S005000048410D", "S105x000010200", "S9"},
         {mismatch},
         "f 'HA' 8 S1/S9 0+2(2)=0102\n"},
        {{"DW 8", "S005000048410D", "S1051000010200", "S1051 02030400", "S9"},
         {mismatch},
         "f 'HA' 8 S1/S9 4096+2(2)=0102 0+2(2)=0304\n"},
        {{"DW 8", "S005000048410D", "S1051000010200", "S1G51002030400", "S1021002",
          "S1051002030400", "S9"},
         {mismatch, argument},
         "f 'HA' 8 S1/S9 4096+4(4)=01020304\n"},
        {{"DW 8", "S00500004x410D", "S307FFFFFFFE010200", "S3", "S307000000000304", "S7"},
         {mismatch, mismatch, mismatch},
         "f '' 8 S3/S7 -2+4(4)=01020304\n"},
        {{"DW 8", "S003000FC", "S1051000010200", "S9"},
         {argument},
         "f '' 8 S1/S9 4096+2(2)=0102\n"},
        {{"DW 8", "S0030000FC", "S1051000010200", "S9"}, {}, "f '' 8 S1/S9 4096+2(2)=0102\n"},
    };
    for (const Case& one : cases) {
        const Outcome outcome = readFirmware(joined(one.lines), Compression::Zlib, one.boxes);
        EXPECT_EQ(describe(*outcome.images), one.images);
        EXPECT_EQ(outcome.lastError, 0);
    }
}

TEST(SRecordReader, KeepsEveryByteOfLongRuns)
{
    // Long enough for the data to outgrow their room many times, with records of all lengths.
    QByteArray payload;
    QByteArray text("DW 8\nS005000048410D\n");
    for (int i = 0; payload.size() < 200'000; ++i) {
        const qsizetype length = 1 + i * 7 % 250;
        QByteArray record;
        for (int shift = 24; shift >= 0; shift -= 8)
            record.append(static_cast<char>(payload.size() >> shift));
        for (qsizetype j = 0; j < length; ++j)
            record.append(static_cast<char>((payload.size() + j) * 31 / 7 + j));
        payload += record.mid(4);
        text +=
            "S3" + QByteArray(1, static_cast<char>(length + 5)).toHex() + record.toHex() + "00\n";
    }
    payload.append(payload.size() % 2, '\0');
    text += "S70500000000FA\n";

    const Outcome packed = readFirmware(text);
    ASSERT_EQ(packed.images->Count(), 1);
    const auto table = packed.images->Item(1)->Definitiontables()->Item(0);
    EXPECT_EQ(table.Datablocks->data(), payload);
    QByteArray sent;
    QByteArray chunk;
    std::int32_t length = 510;
    while (table.Datablocks->GetNextChunk(length, true, chunk)) {
        sent += chunk;
        length = 510;
    }
    EXPECT_EQ(sent.size(), table.Datablocks->CompressedCount());
    QByteArray inflated(payload.size(), '\0');
    auto size = static_cast<uLongf>(inflated.size());
    EXPECT_EQ(uncompress(reinterpret_cast<Bytef*>(inflated.data()), &size,
                         reinterpret_cast<const Bytef*>(sent.constData()),
                         static_cast<uLong>(sent.size())),
              Z_OK);
    EXPECT_EQ(inflated, payload);

    const Outcome plain = readFirmware(text, Compression::None);
    const auto plainTable = plain.images->Item(1)->Definitiontables()->Item(0);
    EXPECT_EQ(plainTable.Datablocks->data(), payload);
    EXPECT_EQ(plainTable.Datablocks->CompressedCount(), -1);
}

} // namespace fldc::test
