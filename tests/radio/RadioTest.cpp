#include "radio/clsRadio.h"
#include "support/Failures.h"
#include "support/ScriptedMessages.h"

#include "platform/ShowError.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace fldc {
namespace {

TEST(FlashBlocks, AnAddressBelongsToTheFirstBlockThatContainsIt)
{
    colFlashBlocks blocks;
    EXPECT_EQ(blocks.FindBlock(0), -1);
    blocks.Add(4, u"00001000"_s, u"00000800"_s, {});
    blocks.Add(5, u"00001800"_s, u"00000800"_s, u"Five"_s);
    blocks.Add(6, u"00001F00"_s, u"00000200"_s, {}); // overlaps the one before
    blocks.Add(7, u"FFFFFF00"_s, u"00000080"_s, {}); // -256 to -129
    blocks.Add(8, u"00003000"_s, u"00000000"_s, {});
    const std::pair<std::int32_t, std::int16_t> cases[] = {
        {0x0FFF, -1}, {0x1000, 4},  {0x17FF, 4},  {0x1800, 5}, {0x1FFF, 5}, {0x2000, 6},
        {0x20FF, 6},  {0x2100, -1}, {0x3000, -1}, {-256, 7},   {-129, 7},   {-128, -1}};
    for (const auto& [address, id] : cases)
        EXPECT_EQ(blocks.FindBlock(address), id) << std::hex << address;
}

TEST(FlashBlocks, ABlockThatEndsBeyondTheAddressesIsShownAndGivesZero)
{
    ScriptedMessages messages;
    const ErrorBoxScope box(messages);
    colFlashBlocks blocks;
    blocks.Add(3, u"00000000"_s, u"00000100"_s, {});
    blocks.Add(4, u"7FFFFF00"_s, u"00000100"_s, {});
    EXPECT_EQ(blocks.FindBlock(0xFF), 3); // found before the walk comes to it
    messages.expectBox(u"Error 6 Overflow"_s);
    EXPECT_EQ(blocks.FindBlock(0x7FFFFF00), 0);
    messages.expectBox(u"Error 6 Overflow"_s);
    EXPECT_FALSE(blocks.blockAround(0x7FFFFF00)) << "in none of them, not in block 0";
    EXPECT_EQ(failureNumber([&] { blocks.Add(1, u"0"_s, u"0x1"_s, {}); }), 13);
    EXPECT_EQ(blocks.Count(), 2);
}

TEST(Configurations, TheTextIsReadUpToItsTerminatorAndThenByField)
{
    const std::tuple<const char16_t*, const char16_t*, int, int, int, int> cases[] = {
        {u"00410042003100000001A00000010203", u"AB1", 0x1A000, 1, 2, 3},
        {u"004100000001A000FFFF", u"A", 0x1A000, 0xFFFF, 0, 0}, // a radio without networks
        {u"004100000001a0000000fFfE99", u"A", 0x1A000, 0, 255, 254},
        {u"00E90020000080000000FFFF0100", u"\u00E9 ", -2147483647 - 1, 0xFFFF, 1, 0},
        // Without a terminator the last 12 digits are the fields, zeros among them or not.
        {u"0001A0008001", u"", 0x1A000, 0x8001, 0, 0},
        {u"00410042000000000000", u"AB", 0, 0, 0, 0},
        {u"0041004200430001000000FF", u"ABC", 0x10000, 0xFF, 0, 0},
        {u"004112000000ABCD", u"A", 0x12000000, 0xABCD, 0, 0},
        {u"0041420001A0000001", u"AB", 0x1A000, 1, 0, 0}, // the last group is short
        // The first group of zeros with all the fields behind it counts, on a boundary.
        {u"00410000004200000001A00000010203", u"A", 0x00420000, 1, 0xA0, 0},
        {u"00410010000100000001A0000001", u"A\x10\x01", 0x1A000, 1, 0, 0}};
    for (const auto& [data, product, address, status, network, device] : cases) {
        colConfigurations configurations;
        const auto made = configurations.Add(QString::fromUtf16(data), u"unused"_s);
        EXPECT_EQ(made->ProductID(), QString::fromUtf16(product));
        EXPECT_EQ(std::tuple(made->ConfigurationAddress(), made->Status()),
                  std::tuple(address, status));
        EXPECT_EQ(std::tuple(made->NetWorkID(), made->DeviceID()), std::tuple(network, device))
            << qPrintable(QString::fromUtf16(data));
    }
}

TEST(Configurations, WhatCannotBeReadIsNotAdded)
{
    const std::pair<const char16_t*, int> cases[] = {
        // Too short for the fields; a character beyond 8 bits.
        {u"", 5},
        {u"0001A000001", 5},
        {u"010000000001A0000001", 5},
        // Not hexadecimal: the product, the address, the status.
        {u"00G100000001A0000001", 13},
        {u"00410000 001A0000001", 13},
        {u"004100000001A00000-1", 13},
        // Network and device number come both or not at all.
        {u"004100000001A000000102", 13},
        {u"004100000001A0000001020X", 13}};
    colConfigurations configurations;
    for (const auto& [data, number] : cases)
        EXPECT_EQ(
            failureNumber([&, text = data] { configurations.Add(QString::fromUtf16(text), {}); }),
            number);
    EXPECT_EQ(configurations.Count(), 0);
}

} // namespace
} // namespace fldc
