#include "FirmwareReading.h"
#include "support/VirtualPlatform.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace fldc::test {

TEST(TagSearch, FindsTheTagBehindTheMarker)
{
    struct Case {
        std::int16_t bits;
        const char* tables; ///< separated by blanks; "M" stands for the marker
        QString tag;        ///< "HEADER" when none is found
    };
    const Case cases[]{
        {16, "M0000005200560000", u"RV"_s},
        // At an even offset, but not at an odd one.
        {16, "FFFF1234M005200560000FFFF", u"RV"_s},
        {16, "FFM00520056000000", u"HEADER"_s},
        // Zero units before it do not count.
        {16, "M00000000000000520000", u"R"_s},
        // High byte first; a zero byte across two units does not end it.
        {16, "M0000204100C40000", u"\u2041\u00C4"_s},
        {16, "M0100005201000000", u"\u0100R\u0100"_s},
        // Without an end, with nothing but zeros, with nothing at all.
        {16, "M000000520056", u""_s},
        {16, "M00000000", u""_s},
        {16, "M", u""_s},
        // The start of a marker before it, a cut marker, the first of two.
        {16, "2A2FM00520000", u"R"_s},
        {16, "00002A2F69426262456C2F", u"HEADER"_s},
        {16, "M00520000M00560000", u"R"_s},
        // In a later table, but not across two.
        {16, "0102 M00520000", u"R"_s},
        {16, "2A2F69426262 456C2F2A00520000", u"HEADER"_s},
        // Only units of 16 bits hold a tag.
        {8, "M00525600", u"HEADER"_s},
        {32, "M00000052000000000000", u"HEADER"_s},
        {12, "M00520000", u"HEADER"_s},
    };
    const VirtualPlatform machine; // no error box is announced
    for (const Case& one : cases) {
        clsFile image;
        image.setTagName(u"HEADER"_s);
        image.setIntNumberOfBits(one.bits);
        const QStringList tables = QString::fromLatin1(one.tables).split(u' ');
        for (qsizetype i = 0; i < tables.size(); ++i) {
            image.Definitiontables()->Add(0);
            const auto data = image.Definitiontables()->Datablocks(static_cast<std::int32_t>(i));
            data->Add(QString(tables[i]).replace(u'M', u"2A2F69426262456C2F2A"_s));
            data->CompressData();
        }
        image.ParseFile();
        EXPECT_EQ(image.TagName(), one.tag) << one.tables;
    }
}

TEST(TagSearch, IsLeftOutForTagsThatStayAndDoneForOthers)
{
    // The header texts are JVA1, JVB1 and JJVA1.
    QByteArray text;
    for (const char* header : {"S00600004A56413100", "S00600004A56423100", "S00700004A4A56413100"})
        text += QByteArray(header) + "\nS11100002A2F69426262456C2F2A005200000000\nS9\n";
    const Outcome outcome = readFirmware(text);
    ASSERT_EQ(outcome.images->Count(), 3);
    EXPECT_EQ(outcome.images->Item(1)->TagName(), u"JVA1"_s);
    EXPECT_EQ(outcome.images->Item(2)->TagName(), u"R"_s);
    EXPECT_EQ(outcome.images->Item(3)->TagName(), u"R"_s);
}

} // namespace fldc::test
