#include "FirmwareReading.h"
#include "support/VirtualPlatform.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace fldc::test {

namespace {

// The tag of an image with that data, one table per text.
QString tagOf(std::int16_t bits, const std::vector<QString>& tables)
{
    clsFile image;
    image.setTagName(u"HEADER"_s);
    image.setIntNumberOfBits(bits);
    for (const QString& digits : tables) {
        image.Definitiontables()->Add(0);
        const auto data =
            image.Definitiontables()->Datablocks(image.Definitiontables()->Count() - 1);
        data->Add(digits);
        data->CompressData();
    }
    const VirtualPlatform machine; // no error box is announced
    image.ParseFile();
    return image.TagName();
}

} // namespace

TEST(TagSearch, FindsTheTagBehindTheMarker)
{
    struct Case {
        const char* what;
        std::int16_t bits;
        std::vector<QString> tables;
        QString tag;
    };
    const QString marker = u"2A2F69426262456C2F2A"_s;
    const std::vector<Case> cases{
        {"one character per unit", 16, {marker + u"0000005200560000"_s}, u"RV"_s},
        {"at an even offset", 16, {u"FFFF1234"_s + marker + u"005200560000FFFF"_s}, u"RV"_s},
        {"not at an odd one", 16, {u"FF"_s + marker + u"00520056000000"_s}, u"HEADER"_s},
        {"zero units before it", 16, {marker + u"00000000000000520000"_s}, u"R"_s},
        {"none before it", 16, {marker + u"00520000"_s}, u"R"_s},
        {"high byte first", 16, {marker + u"0000204100C40000"_s}, u"\u2041\u00C4"_s},
        {"a zero byte across two units does not end it",
         16,
         {marker + u"0100005201000000"_s},
         u"\u0100R\u0100"_s},
        {"without an end", 16, {marker + u"000000520056"_s}, u""_s},
        {"nothing but zeros behind the marker", 16, {marker + u"00000000"_s}, u""_s},
        {"nothing behind the marker", 16, {marker}, u""_s},
        {"a start of the marker before it", 16, {u"2A2F"_s + marker + u"00520000"_s}, u"R"_s},
        {"a cut marker", 16, {u"00002A2F69426262456C2F"_s}, u"HEADER"_s},
        {"the first of two", 16, {marker + u"00520000"_s + marker + u"00560000"_s}, u"R"_s},
        {"in a later table", 16, {u"0102"_s, marker + u"00520000"_s}, u"R"_s},
        {"not across tables", 16, {u"2A2F69426262"_s, u"456C2F2A00520000"_s}, u"HEADER"_s},
        {"no tags of bytes", 8, {marker + u"00525600"_s}, u"HEADER"_s},
        {"no tags of 32 bits", 32, {marker + u"000000520000"_s + u"00000000"_s}, u"HEADER"_s},
        {"nor of units of a width that is none", 12, {marker + u"00520000"_s}, u"HEADER"_s},
    };
    for (const Case& one : cases)
        EXPECT_EQ(tagOf(one.bits, one.tables), one.tag) << one.what;
}

TEST(TagSearch, ComparesUnitsOfTheImagesWidth)
{
    const std::vector<std::uint8_t> data{0x00, 0x12, 0x34, 0x56, 0x12, 0x34, 0x56, 0x78, 0x00};
    const auto find = [&](std::int16_t bits, const char16_t* value, std::int32_t start) {
        clsFile image;
        image.setIntNumberOfBits(bits);
        return image.FindValue(data, value, start);
    };
    EXPECT_EQ(find(8, u"12", 0), 1);
    EXPECT_EQ(find(8, u"12", 2), 4);
    EXPECT_EQ(find(8, u"1234", 0), -1);
    EXPECT_EQ(find(8, u"00", 8), 8);
    EXPECT_EQ(find(8, u"00", 9), -1);
    EXPECT_EQ(find(16, u"1234", 0), 4);
    EXPECT_EQ(find(16, u"1234", 1), 1);
    EXPECT_EQ(find(16, u"0000", 8), -1);
    EXPECT_EQ(find(32, u"12345678", 0), 4);
    EXPECT_EQ(find(32, u"1234", 0), -1);
    EXPECT_EQ(failureOf([&] { (void)find(16, u"1234", -1); }), 9);
}

TEST(TagSearch, IsLeftOutForTagsThatStayAndDoneForOthers)
{
    // The header texts are JVA1, JVB1 and JJVA1.
    const std::string data = "S11100002A2F69426262456C2F2A005200000000";
    const Outcome outcome =
        readFirmware(joined({"S00600004A56413100", data, "S9", "S00600004A56423100", data, "S9",
                             "S00700004A4A56413100", data, "S9"}));
    ASSERT_EQ(outcome.images->Count(), 3);
    EXPECT_EQ(outcome.images->Item(1)->TagName(), u"JVA1"_s);
    EXPECT_EQ(outcome.images->Item(2)->TagName(), u"R"_s);
    EXPECT_EQ(outcome.images->Item(3)->TagName(), u"R"_s);
}

} // namespace fldc::test
