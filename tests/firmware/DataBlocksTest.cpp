#include "FirmwareReading.h"
#include "support/Failures.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace fldc::test {

TEST(DataBlocks, TakeHexTextToTheEvenByteAndRefuseTheRest)
{
    // Half a byte too many or too few: to the even number of bytes.
    for (const auto& [digits, all] : {std::pair{u"0102Fe", u"0102FE"},
                                      {u"", u""},
                                      {u"A", u""},
                                      {u"AB1", u"AB01"},
                                      {u"ABCD1", u"ABCD"},
                                      {u"ABCDEF1", u"ABCDEF01"}}) {
        colDataBlocks blocks;
        blocks.Add(digits);
        for (const char16_t* wrong : {u"03G4", u"0x", u" 3", u"-1", u"٣٣"})
            EXPECT_EQ(failureNumber([&] { blocks.Add(wrong); }), 13);
        EXPECT_EQ(blocks.GetAllData(), QString::fromUtf16(all));
        EXPECT_EQ(failureNumber([&] { return blocks.ByteAt(blocks.Count()); }), 5);
    }
}

TEST(DataBlocks, HoldRoomOf513BytesUntilFinished)
{
    colDataBlocks blocks;
    EXPECT_EQ(failureNumber([&] { blocks.CompressData(); }), 9);
    EXPECT_EQ(blocks.data(), QByteArray(513, '\0'));
    blocks.Add(u"010203");
    EXPECT_EQ(blocks.data(), QByteArray("\1\2\3", 3) + QByteArray(513, '\0'));
    blocks.AddBytes(std::vector<std::uint8_t>(513, 0xAA));
    EXPECT_EQ(blocks.data(), QByteArray("\1\2\3", 3) + QByteArray(513, '\xAA'));
}

TEST(DataBlocks, CompressWhatGetsSmallerAndPadBothToEven)
{
    for (std::size_t size = 999; size < 1050; ++size) {
        colDataBlocks blocks;
        std::vector<std::uint8_t> bytes(size, 0x55);
        bytes[size / 2] = static_cast<std::uint8_t>(size);
        blocks.AddBytes(bytes);
        blocks.CompressData();
        const QByteArray plain(reinterpret_cast<const char*>(bytes.data()), std::ssize(bytes));
        EXPECT_EQ(blocks.data(), plain + QByteArray(std::ssize(bytes) % 2, '\0'));
        EXPECT_LT(blocks.CompressedCount(), 60);
        EXPECT_EQ(inflated(blocks), plain);
    }
    colDataBlocks incompressible;
    incompressible.Add(u"1F83C07A5EE9421DB6");
    incompressible.CompressData();
    EXPECT_EQ(incompressible.CompressedCount(), -1);
    EXPECT_EQ(incompressible.data(), QByteArray::fromHex("1F83C07A5EE9421DB600"));
    EXPECT_EQ(failureNumber([&] { return inflated(incompressible); }), 9);
}

TEST(DataBlocks, DeliverChunksInOrder)
{
    struct Case {
        std::size_t bytes;
        std::vector<qsizetype> chunks;
    };
    for (const Case& one : {Case{1020, {510, 510}}, Case{600, {510, 90}}, Case{511, {510, 2}}}) {
        colDataBlocks blocks;
        for (std::size_t i = 0; i < one.bytes; ++i)
            blocks.AddBytes(std::vector{static_cast<std::uint8_t>(i * 7)});
        blocks.FinishUncompressed();
        QByteArray all;
        QByteArray chunk;
        std::int32_t length = 510;
        for (const qsizetype size : one.chunks) {
            ASSERT_TRUE(blocks.GetNextChunk(length, false, chunk));
            EXPECT_EQ(chunk.size(), size);
            EXPECT_EQ(std::exchange(length, 510), size);
            all += chunk;
        }
        EXPECT_EQ(all, blocks.data());
        EXPECT_FALSE(blocks.GetNextChunk(length, false, chunk));
    }
}

} // namespace fldc::test
