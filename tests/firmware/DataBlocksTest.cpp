#include "FirmwareReading.h"
#include "support/Failures.h"

#include <algorithm>
#include <random>

#include <gtest/gtest.h>
#include <zlib.h>

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

QByteArray packed(colDataBlocks& blocks)
{
    QByteArray all;
    std::int32_t length = blocks.CompressedCount();
    if (length > 0 && !blocks.GetNextChunk(length, true, all))
        ADD_FAILURE() << "no compressed bytes";
    blocks.setReadPosition(0);
    return all;
}

// As in one call of zlib, which has no room for what does not get smaller; padded.
QByteArray compressedAtOnce(const QByteArray& plain)
{
    QByteArray all(plain.size() + 1, '\0');
    auto size = static_cast<uLongf>(plain.size());
    const int result = compress(reinterpret_cast<Bytef*>(all.data()), &size,
                                reinterpret_cast<const Bytef*>(plain.constData()),
                                static_cast<uLong>(plain.size()));
    return result == Z_OK
               ? all.left(static_cast<qsizetype>(size) + static_cast<qsizetype>(size % 2))
               : QByteArray();
}

// Best is an ordinary stream of the same bytes, never longer than the standard one; where neither
// is shorter than the data there is none.
TEST(DataBlocks, BestCompressionLosesNothing)
{
    std::mt19937 random(11);
    QByteArray noise(70'001, Qt::Uninitialized);
    std::ranges::generate(noise, [&] { return static_cast<char>(random()); });
    QByteArray code; // few instructions often, with operands that nobody foresees
    while (code.size() < 200'000) {
        code += QByteArray::fromHex("F8DF4620B5104770E92D41F0BD10")
                    .mid(qsizetype(random() % 7 * 2), 2 + qsizetype(random() % 5));
        code += static_cast<char>(random() % 40);
    }
    const std::vector<std::pair<QByteArray, bool>> cases{
        {code, true},
        {noise, false},
        {code.left(1), false},
        {QByteArray("ABCDEF"), false},
        {code.left(501), true},
        {QByteArray(100'000, '\0'), true},
        {noise + noise, false},
        {noise.left(20'000) + noise.left(20'000), true},
        {QByteArray(code + noise).repeated(9), true},
        {code.repeated(16).left(0x200001), true}};
    bool everShorter = false;
    for (const auto& [plain, smaller] : cases) {
        colDataBlocks blocks[2];
        for (int i = 0; i < 2; ++i) {
            blocks[i].AddBytes({reinterpret_cast<const std::uint8_t*>(plain.constData()),
                                static_cast<std::size_t>(plain.size())});
            blocks[i].CompressData(i == 0 ? Compression::Zlib : Compression::Best);
        }
        const auto [standard, best] =
            std::pair(blocks[0].CompressedCount(), blocks[1].CompressedCount());
        EXPECT_EQ(packed(blocks[0]), compressedAtOnce(plain)) << plain.size();
        EXPECT_EQ(best != -1, smaller) << plain.size();
        EXPECT_EQ(smaller ? inflated(blocks[1]) : plain, plain);
        EXPECT_TRUE(best <= standard || standard == -1) << plain.size();
        everShorter = everShorter || best < standard;
        EXPECT_EQ(blocks[0].data(), blocks[1].data());
    }
    EXPECT_TRUE(everShorter);
}

} // namespace fldc::test
