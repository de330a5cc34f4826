#include "protocol/PadPlacement.h"

#include "firmware/SRecordReader.h"
#include "radio/colFlashBlocks.h"
#include "support/VirtualPlatform.h"

#include <gtest/gtest.h>

namespace fldc {
namespace {

struct Record {
    int address;
    const char* data;
};

struct PadCase {
    const char* tag;
    std::vector<Record> records; ///< in the order of the file; contiguous ones are one run
    const char* written;         ///< address+units=bytes of each run, or the code
};

constexpr auto fifteen = "000102030405060708090A0B0C0D0E";

// Blocks of 10 (hexadecimal) bytes from 0 on, and one of 3 bytes at 40.
const PadCase padCases[]{
    // As the reader pads: behind the run, FF, or 00 behind the last of the file.
    {"A", {{0x12, "010203"}, {0x18, "0405"}}, "12+4=010203FF 18+2=0405"},
    {"A", {{0x12, "010203"}}, "12+3=01020300"},
    {"A", {{0x1D, "010203"}, {0x24, "0405"}}, "1D+4=010203FF 24+2=0405"},
    // The next block is nobody's, or another run begins there.
    {"A", {{0x1D, "010203"}}, "1C+4=FF010203"},
    {"A", {{0x1D, "010203"}, {0x04, "0405"}}, "1C+4=FF010203 4+2=0405"},
    {"A", {{0x20, "0405"}, {0x1D, "010203"}}, "20+2=0405 1C+4=FF010203"},
    // Nor is there room in front.
    {"A", {{0x03, "0405"}, {0x00, "010203"}}, "0+6=0102030405FF"},
    {"A", {{0x06, "0708"}, {0x03, "040506"}, {0x00, "010203"}}, "6+2=0708 0+6=010203040506"},
    {"A", {{0x1F, "AA"}, {0x10, fifteen}}, "10+10=000102030405060708090A0B0C0D0EAA"},
    {"A", {{0x1E, "AABB"}, {0x10, fifteen}}, "54"},
    {"A", {{0x40, "010203"}}, "54"},
    // Runs that must begin at even addresses have their pad in front already.
    {"JWA2", {{0x13, "0102"}, {0x18, "0304"}}, "12+4=FF0102FF 18+2=0304"},
    {"JWA2", {{0x10, "010203"}, {0x18, "0708"}, {0x13, "0405"}}, "10+6=0102030405FF 18+2=0708"},
    {"JWA2", {{0x13, "0405"}, {0x10, "01020304"}}, "54"},
    // The file itself does not fit.
    {"A", {{0x42, "0102"}}, "8201"},
    {"A", {{0x3E, "010203"}}, "3E+3=01020300"},
};

class PadPlacement : public testing::TestWithParam<std::size_t> {
protected:
    PadPlacement()
    {
        for (const char* start : {"00000000", "00000010", "00000020", "00000030"})
            addBlock(start, "00000010");
        addBlock("00000040", "00000003");
    }
    void addBlock(const char* start, const char* length)
    {
        blocks.Add(static_cast<std::int16_t>(blocks.Count()), QString::fromLatin1(start),
                   QString::fromLatin1(length), {});
    }
    [[nodiscard]] std::shared_ptr<clsFile> read(const PadCase& padCase)
    {
        QByteArray text = "DW 8\nS0000000" + QByteArray(padCase.tag).toHex() + "00\n";
        for (const Record& record : padCase.records) {
            const QByteArray data(record.data);
            text += "S1" + QByteArray::number(data.size() / 2 + 3, 16).rightJustified(2, '0') +
                    QByteArray::number(record.address, 16).rightJustified(4, '0') + data + "00\n";
        }
        machine.files.files[QStringLiteral("f")].content = text + "S9030000FC\n";
        const auto files = std::make_shared<colFiles>();
        EXPECT_FALSE(SRecordReader(machine.files, files).read(QStringLiteral("f")));
        return files->Item(1);
    }

    VirtualPlatform machine;
    colFlashBlocks blocks;
};

TEST_P(PadPlacement, TouchesNothingElse)
{
    const auto tables = placePads(*read(padCases[GetParam()]), blocks);
    QStringList written;
    for (int i = 0; tables && i < tables->Count(); ++i) {
        const auto bytes = tables->Datablocks(i)->data();
        written += QString::number(tables->Address(i).toInt(), 16).toUpper() + u'+' +
                   QString::number(tables->Length(i), 16) + u'=' +
                   QString::fromLatin1(bytes.toHex().toUpper());
    }
    const QString got = tables ? written.join(u' ') : QString::number(lastError().number());
    EXPECT_EQ(got.toStdString(), padCases[GetParam()].written);
}

INSTANTIATE_TEST_SUITE_P(Runs, PadPlacement, testing::Range<std::size_t>(0, std::size(padCases)));

} // namespace
} // namespace fldc
