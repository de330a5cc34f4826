#include "shared/HexText.h"
#include "shared/NumberText.h"
#include "support/Failures.h"

#include <gtest/gtest.h>

#include <utility>

using namespace Qt::StringLiterals;

namespace fldc {
namespace {

// clang-format off
TEST(HexText, ReadsUpToEightSignificantDigitsAsTwosComplement)
{
    const std::pair<QString, std::int64_t> values[] = {
        {u"0"_s, 0}, {u"1a000"_s, 106496}, {u"7FFFFFFF"_s, 2147483647}, {u"FFFFFFFF"_s, -1},
        {u"80000000"_s, -2147483648}, {u"0000FFFFFFFe"_s, -2}};
    for (const auto& [text, value] : values)
        EXPECT_EQ(hexToInt(text), value) << qPrintable(text);
    const std::pair<QString, int> failures[] = {
        {u"100000000"_s, 6}, {u""_s, 13}, {u" 1"_s, 13}, {u"-1"_s, 13}, {u"0x1"_s, 13},
        {u"1G"_s, 13}, {u"\u0661"_s, 13}};
    for (const auto& [text, number] : failures) {
        EXPECT_EQ(failureNumber([&t = text] { return hexToInt(t); }), number) << qPrintable(text);
        EXPECT_FALSE(readHex(text)) << qPrintable(text);
    }
}
// clang-format on

// clang-format off
TEST(NumberText, ReadsWholeNumbersAndRoundsHalvesToEven)
{
    const std::pair<QString, std::int64_t> values[] = {
        {u"7"_s, 7}, {u" 12\t"_s, 12}, {u"+3"_s, 3}, {u"-0004"_s, -4}, {u"2.5"_s, 2},
        {u"3.5"_s, 4}, {u"-2.5"_s, -2}, {u".6"_s, 1}, {u"5."_s, 5},
        {u"2147483647"_s, 2147483647}, {u"-2147483648"_s, -2147483648}};
    for (const auto& [text, value] : values)
        EXPECT_EQ(readNumber(text), value) << qPrintable(text);
    for (const auto text : {u"", u".", u"-", u"1 2", u"1.2.3", u"+-1", u"1e3", u"0x10", u"nan",
                            u"COM1", u"2147483648"})
        EXPECT_FALSE(readNumber(text)) << qPrintable(QString::fromUtf16(text));

    EXPECT_EQ(toInt16(u"32767.4"), 32767);
    EXPECT_EQ(toInt16(u"-32768"), -32768);
    for (const auto text : {u"32768", u"-32769", u"32767.5", u" 99999999999 "})
        EXPECT_EQ(failureNumber([&] { return toInt16(text); }), 6);
    EXPECT_EQ(failureNumber([] { return toInt16(u"one"); }), 13);
    EXPECT_EQ(divideRounded(3, 2), 2);
    EXPECT_EQ(divideRounded(5, 2), 2);
    EXPECT_EQ(divideRounded(400'000'000'000, 4'000'000'001), 100);
}
// clang-format on

} // namespace
} // namespace fldc
