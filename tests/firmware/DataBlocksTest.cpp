#include "FirmwareReading.h"

#include <gtest/gtest.h>

#include <zlib.h>

using namespace Qt::StringLiterals;

namespace fldc::test {

namespace {

QByteArray chunkOf(colDataBlocks& blocks, std::int32_t wanted, bool compressed)
{
    QByteArray chunk;
    std::int32_t length = wanted;
    EXPECT_TRUE(blocks.GetNextChunk(length, compressed, chunk));
    EXPECT_EQ(length, chunk.size());
    return chunk;
}

} // namespace

TEST(DataBlocks, AddsHexText)
{
    colDataBlocks blocks;
    EXPECT_EQ(blocks.GetAllData(), QString());
    blocks.Add(u"0102");
    blocks.Add(u"");
    blocks.Add(u"Fe");
    EXPECT_EQ(blocks.Count(), 3);
    EXPECT_EQ(blocks.Item(0), u"01"_s);
    EXPECT_EQ(blocks.Item(2), u"FE"_s);
    EXPECT_EQ(blocks.ByteAt(2), 0xFE);
    EXPECT_EQ(blocks.GetAllData(), u"0102FE"_s);
    for (const std::int32_t index : {-1, 3}) {
        EXPECT_EQ(failureOf([&] { (void)blocks.Item(index); }), 5);
        EXPECT_EQ(failureOf([&] { (void)blocks.ByteAt(index); }), 5);
    }
    // Half a byte too many or too few: to the even number of bytes.
    for (const auto& [digits, all] : {std::pair{u"A", u""},
                                      {u"AB1", u"AB01"},
                                      {u"ABCD1", u"ABCD"},
                                      {u"ABCDEF1", u"ABCDEF01"}}) {
        colDataBlocks odd;
        odd.Add(digits);
        EXPECT_EQ(odd.GetAllData(), QString::fromUtf16(all));
    }
}

TEST(DataBlocks, RefusesWhatIsNotHexText)
{
    colDataBlocks blocks;
    blocks.Add(u"0102");
    for (const char16_t* digits : {u"03G4", u"0x", u" 3", u"-1", u"٣٣"})
        EXPECT_EQ(failureOf([&] { blocks.Add(digits); }), 13);
    EXPECT_EQ(blocks.Count(), 2);
    blocks.Add(u"05");
    EXPECT_EQ(blocks.GetAllData(), u"010205"_s);
}

TEST(DataBlocks, HoldsRoomOf513BytesUntilFinished)
{
    colDataBlocks blocks;
    EXPECT_EQ(blocks.data(), QByteArray(513, '\0'));
    blocks.Add(u"010203");
    EXPECT_EQ(blocks.data(), QByteArray("\1\2\3", 3) + QByteArray(513, '\0'));
    blocks.AddBytes(std::vector<std::uint8_t>(513, 0xAA));
    EXPECT_EQ(blocks.data().size(), 516);
    const QByteArray before = blocks.data();
    blocks.Add(u"BB");
    EXPECT_EQ(blocks.data(), before + '\xBB' + QByteArray(513, '\0'));
    EXPECT_EQ(before.size(), 516); // a copy: what was given out does not change
    EXPECT_EQ(blocks.CompressedCount(), 0);
    blocks.CompressData();
    EXPECT_EQ(blocks.data(), before + '\xBB' + '\0');
    EXPECT_EQ(blocks.Count(), 517);
}

TEST(DataBlocks, CompressesWhatGetsSmallerAndPadsBothToEven)
{
    int paddedStreams = 0;
    for (std::size_t size = 999; size < 1050; ++size) {
        colDataBlocks blocks;
        std::vector<std::uint8_t> bytes(size, 0x55);
        bytes[size / 2] = static_cast<std::uint8_t>(size);
        blocks.AddBytes(bytes);
        blocks.CompressData();
        EXPECT_EQ(static_cast<std::size_t>(blocks.data().size()), (size + 1) / 2 * 2);
        EXPECT_EQ(static_cast<std::size_t>(blocks.Count()), size);

        ASSERT_GT(blocks.CompressedCount(), 0);
        ASSERT_LT(blocks.CompressedCount(), 60);
        EXPECT_EQ(blocks.CompressedCount() % 2, 0);
        const QByteArray packed = chunkOf(blocks, 510, true);
        EXPECT_EQ(packed.size(), blocks.CompressedCount());
        std::vector<std::uint8_t> inflated(size);
        auto inflatedSize = static_cast<uLongf>(size);
        auto taken = static_cast<uLong>(packed.size());
        ASSERT_EQ(uncompress2(inflated.data(), &inflatedSize,
                              reinterpret_cast<const Bytef*>(packed.constData()), &taken),
                  Z_OK);
        EXPECT_EQ(inflated, bytes);
        const auto rest = packed.mid(static_cast<qsizetype>(taken));
        EXPECT_EQ(rest, QByteArray(rest.size(), '\0'));
        EXPECT_LE(rest.size(), 1);
        paddedStreams += static_cast<int>(rest.size());
    }
    EXPECT_GT(paddedStreams, 0); // or the padding was never seen
}

TEST(DataBlocks, HasNoCompressedCopyWhenItWouldNotBeSmaller)
{
    colDataBlocks blocks;
    blocks.Add(u"1F83C07A5EE9421DB6");
    blocks.CompressData();
    EXPECT_EQ(blocks.CompressedCount(), -1);
    EXPECT_EQ(blocks.data().toHex().toUpper(), QByteArray("1F83C07A5EE9421DB600"));
    QByteArray chunk;
    std::int32_t length = 510;
    EXPECT_EQ(failureOf([&] { (void)blocks.GetNextChunk(length, true, chunk); }), 9);
    EXPECT_EQ(chunkOf(blocks, 510, false).size(), 10);

    colDataBlocks empty;
    EXPECT_EQ(failureOf([&] { empty.CompressData(); }), 9);
    EXPECT_EQ(empty.data(), QByteArray(513, '\0'));
}

TEST(DataBlocks, DeliversChunksInOrder)
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
        for (int pass = 0; pass < 2; ++pass) {
            blocks.setReadPosition(0);
            QByteArray all;
            for (const qsizetype size : one.chunks) {
                const QByteArray chunk = chunkOf(blocks, 510, false);
                EXPECT_EQ(chunk.size(), size);
                all += chunk;
            }
            EXPECT_EQ(all, blocks.data());
            EXPECT_EQ(blocks.ReadPosition(), all.size());
            QByteArray untouched("x");
            std::int32_t length = 510;
            EXPECT_FALSE(blocks.GetNextChunk(length, false, untouched));
            EXPECT_EQ(length, 510);
            EXPECT_EQ(untouched, QByteArray("x"));
        }
    }
}

} // namespace fldc::test
