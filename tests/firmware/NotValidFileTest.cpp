#include "FirmwareReading.h"
#include "shared/LastError.h"
#include "support/VirtualPlatform.h"

#include <gtest/gtest.h>

namespace fldc::test {

namespace {

using Lines = std::vector<std::string>;

struct NotValidFile {
    Lines lines;
    int line;           ///< where reading stops
    const char* reason; ///< part of it
    int images = 0;     ///< what stays
};

const std::string header = "S005000048410D";
const std::string data = "S1050000000100";
const std::string end = "S9030000FC";

const std::vector<NotValidFile> notValidFiles{
    {{}, 0, "ends before"},
    {{"// nothing", ""}, 2, "ends before"},
    {{header}, 1, "ends before", 1},
    {{"x"}, 1, "\"x\""},
    {{" S005000048410D"}, 1, "\" S\""},
    {{"s005000048410D"}, 1, "\"s0\""},
    {{header, "S5030001FB", data, end}, 2, "\"S5\"", 1},
    {{header, data, end, end}, 4, "\"S9\"", 1},
    // Inside the data
    {{header, data}, 2, "ends inside", 1},
    {{header, data, "S5030001FB", end}, 3, "S5", 1},
    {{header, data, "", end}, 3, "empty line", 1},
    {{header, data, "// comment", end}, 3, "//", 1},
    {{header, data, "S206000002020300", end}, 3, "S2", 1},
    {{header, data, "S8"}, 3, "S8", 1},
    {{header, data, header, data, end}, 3, "S0", 1},
    {{header, data, "S10500000g0100", end}, 3, "not hexadecimal", 1},
    {{header, data, "S1050001000x00", end}, 3, "not hexadecimal", 1},
    {{header, data, "S10500010 0100", end}, 3, "not hexadecimal", 1},
    // Nothing to compress at an address: no data digits, or fewer than one byte's
    {{header, "S103000000", end}, 3, "without data", 1},
    {{header, "S107300", data, end}, 3, "without data", 1},
    {{"DW 32", header, "S105000001020300", "S105001001020300", end}, 4, "without data", 1},
    {{header, "S3097FFFFFFF0001020300", "S7"}, 2, "without a start", 1},
    // Order of the parts
    {{data, header, data, end}, 1, "before the S0 record"},
    {{header, data, end, data, end}, 4, "before the S0 record", 1},
    {{header, data, end, header}, 4, "ends before", 2},
    {{header, data, end, header, data}, 5, "ends inside", 2},
    // Header lines
    {{"DW 12", header, data, end}, 1, "width"},
    {{"DW 0", header, data, end}, 1, "width"},
    {{"DW", header, data, end}, 1, "width"},
    {{"DW eight", header, data, end}, 1, "width"},
    {{"DW 65544", header, data, end}, 1, "width"},
    {{"MD RVKB1,2", header, data, end}, 1, "quotes"},
    {{"MD \"RVKB1,2", header, data, end}, 1, "quotes"},
    {{"MD \"A|B\",2", header, data, end}, 2, "bar"},
};

} // namespace

TEST(NotValidFile, EndsWith34AndSaysWhereAndWhy)
{
    for (const NotValidFile& file : notValidFiles) {
        const QByteArray text = joined(file.lines);
        SCOPED_TRACE(text.toStdString());
        const Outcome outcome = readFirmware(text);
        EXPECT_EQ(outcome.lastError, 34);
        ASSERT_TRUE(outcome.problem);
        EXPECT_EQ(outcome.problem->line, file.line);
        EXPECT_TRUE(outcome.problem->reason.contains(QLatin1StringView(file.reason)))
            << outcome.problem->reason.toStdString();
        EXPECT_EQ(outcome.images->Count(), file.images);
    }
}

TEST(NotValidFile, ReasonNamesTheLineInWords)
{
    const Outcome inside = readFirmware(joined({header, data, "S5030001FB"}));
    EXPECT_EQ(inside.problem->text(), QStringLiteral("line 3: a line of type S5 inside the data"));

    VirtualPlatform machine;
    lastError().clear();
    const auto absent =
        SRecordReader(machine.files, std::make_shared<colFiles>()).read(QStringLiteral("x"));
    ASSERT_TRUE(absent);
    EXPECT_EQ(lastError().number(), 34);
    EXPECT_EQ(absent->text(), QStringLiteral("x: No such file or directory"));
}

TEST(NotValidFile, KeepsTheEarlierImagesAndTheOneBegun)
{
    const Outcome outcome =
        readFirmware(joined({"DW 8", header, data, end, "DW 8", header, data, "S1050002020300"}));
    const std::string images = describe(*outcome.images);
    EXPECT_TRUE(images.starts_with("f 'HA' 8 S1/S9 0+2(2)=0001\nf1 'HA' 8 S1/S9 0+0(4)=00010203"))
        << images;
}

} // namespace fldc::test
