#include "protocol/wire/Frames.h"

#include "protocol/ConfigurationKinds.h"
#include "protocol/HardwareStrings.h"
#include "protocol/wire/FlashLayout.h"
#include "radio/clsRadio.h"
#include "shared/LastError.h"

#include <QStringList>

#include <gtest/gtest.h>

namespace fldc {
namespace {

QByteArray bytes(const char* hex)
{
    return QByteArray::fromHex(hex);
}

TEST(Frames, CarryCountDataAndChecksum)
{
    EXPECT_EQ(buildFrame(Command::ConfirmReady, {}), bytes("3800C7FF"));
    EXPECT_EQ(buildFrame(Command::SetBaudRate, bytes("0060")), bytes("30010060CF9E"));
    EXPECT_EQ(buildFrame(Command::ResetRadio, {}), bytes("3600C9FF"));
    EXPECT_EQ(buildFrame(Command::SetMemoryTarget, bytes("0000")), bytes("3A010000C5FE"));
    // The sum wraps: FFFF + FFFF + 3502.
    EXPECT_EQ(buildFrame(Command::WriteFlashData, bytes("FFFFFFFF")), bytes("3502FFFFFFFFCAFF"));
    const auto largest = buildFrame(Command::WriteFlashData, QByteArray(510, '\0'));
    ASSERT_TRUE(largest);
    EXPECT_EQ(largest->size(), 514);
    EXPECT_EQ(largest->first(2), bytes("35FF"));

    for (const qsizetype size : {1, 3, 512}) {
        lastError().clear();
        EXPECT_FALSE(buildFrame(Command::WriteFlashData, QByteArray(size, '\0'))) << size;
        EXPECT_EQ(lastError().number(), 54);
    }
}

// clang-format off
TEST(Frames, RecordsAreCheckedForLengthAndChecksum)
{
    const std::tuple<const char*, int, const char*> cases[]{
        {"43011234AACA", 0, "1234"}, {"4300BCFF", 0, ""}, {"4302AFAFAEAE5EA0", 0, "AFAFAEAE"},
        {"43011234AACB", 55, ""}, {"4301ZZ34AACA", 55, ""}, {"4302AFAFAEAE5EA1", 55, ""},
        {"4301AACA", 54, ""}, {"43011234AACA00", 54, ""}, {"4", 54, ""}, {"43XX1234AACA", 54, ""},
        {"", 57, ""}};
    for (const auto& [record, code, expected] : cases) {
        const auto data = ExtractRecordData(QString::fromLatin1(record));
        EXPECT_EQ(lastError().number(), code) << record;
        EXPECT_EQ(data.value_or(QString()), QString::fromLatin1(expected)) << record;
        EXPECT_EQ(data.has_value(), code == 0) << record;
    }
}

TEST(FlashLayout, ReadsBlocksAndRegions)
{
    const std::tuple<bool, const char*, int, const char*> cases[]{ // regions or blocks
        {false, "00010000000080000001800000008000", 0, "0:65536+32768 1:98304+32768"},
        {false, "", 0, ""}, {false, "0001000000008000000180", 54, ""},
        {false, "00010000000080000001", 54, ""},
        {true, "00010001000001000003", 0,
         "0:65536+65536 1:131072+65536 2:196608+65536 3:262144+65536"},
        {true, "000200000000002000010001000000400000", 0, "0:0+8192 1:8192+8192 2:65536+16384"},
        {true, "00010000000000200000", 0, "0:0+8192"}, {true, "0001000000000020", 54, ""},
        {true, "00020000000000200000", 54, ""}, // asks for more groups than it holds
        {true, "0001000000000001FFFF", 54, ""}, // more blocks than can be numbered
        {true, "", 54, ""}};
    for (const auto& [regions, data, code, expected] : cases) {
        colFlashBlocks blocks;
        lastError().clear();
        const auto parse = regions ? ParseFlashRegions : ParseFlashStructure;
        EXPECT_EQ(parse(blocks, QString::fromLatin1(data)), code == 0);
        EXPECT_EQ(lastError().number(), code) << data;
        QStringList found;
        for (const auto& each : blocks.items())
            found.append(QStringLiteral("%1:%2+%3").arg(each->ID()).arg(each->StartAddress()).arg(each->Length()));
        EXPECT_EQ(found.join(u' '), QString::fromLatin1(expected)) << data;
    }
}
// clang-format on

struct Component {
    const char* product;
    int network;
    int status;
};

colConfigurations configurationsOf(const std::vector<Component>& components)
{
    colConfigurations configurations;
    for (const Component& each : components) {
        const auto added = configurations.Add(QStringLiteral("0000000000000000"), {});
        added->setProductID(QString::fromLatin1(each.product));
        added->setNetWorkID(static_cast<std::int16_t>(each.network));
        added->setStatus(each.status);
    }
    return configurations;
}

TEST(Configurations, AreClassifiedByTheirCodes)
{
    struct Case {
        std::vector<Component> components;
        const char* kinds; ///< type and "!" when erasable
        bool f1Key;
    };
    // clang-format off
    const Case cases[]{
        {{{"JVA2F1.00", 0, 0}, {"jva2a", 0, 0}, {"JVA2B", 0, 0}, {"SVA2A", 0, 0}, {"X", 0, 0}},
         "Radio Application!,DSP!,Boot Code,System Config Table!,Non Standard!", false},
        {{{"RVKB1", 0, 0}, {"RVKB2", 1, 0}}, "Hardware ID,Hardware ID", false},
        {{{"RVKB1", 1, 0}, {"RHKB2", 1, 0}}, "Hardware ID!,Hardware ID!", false},
        {{{"JVA1G", 0, 0}, {"JVA1G", 0, 1}}, "FPGA Image,FPGA Image!", false},
        {{{"JVA1G", 0, 1}, {"JVA1G", 1, 0}}, "FPGA Image,FPGA Image", false},
        {{{"JVA1G", 0, 1}, {"JVA1G", 0, 1}}, "FPGA Image,FPGA Image", false},
        // The remembered network is that of the latest component of either kind.
        {{{"RVKB1", 0, 0}, {"JVA1G", 1, 0}, {"RVKB2", 1, 0}}, "Hardware ID!,FPGA Image,Hardware ID!", false},
        {{{"JVA2C", 0, 0}}, "Radio Application", true}, {{{"JVA2T", 0, 0}}, "Radio Application", true},
    };
    // clang-format on
    for (const Case& each : cases) {
        colConfigurations configurations = configurationsOf(each.components);
        EXPECT_EQ(ClassifyConfigurations(configurations, false), each.f1Key) << each.kinds;
        QStringList kinds;
        for (const auto& one : configurations.items())
            kinds.append(one->ComponentType() +
                         (one->blnCanBeErased() ? QStringLiteral("!") : QString()));
        EXPECT_EQ(kinds.join(u','), QString::fromLatin1(each.kinds));
    }
    colConfigurations boot = configurationsOf({{"JVA2B", 0, 0}});
    EXPECT_FALSE(ClassifyConfigurations(boot, true));
    EXPECT_TRUE(boot.Item(1)->blnCanBeErased());
}

TEST(Configurations, TakeTheHardwareOfTheirNetwork)
{
    colConfigurations configurations = configurationsOf(
        {{"JVA2F", 1, 0}, {"RVKB1", 1, 0}, {"JHA2F", 2, 0}, {"RHKB1", 2, 0}, {"RVKB9", 1, 0}});
    AssignHardwareStrings(configurations);
    QStringList hardware;
    for (const auto& each : configurations.items())
        hardware.append(each->HardwareString());
    EXPECT_EQ(hardware.join(u','), QStringLiteral("RVKB9,RVKB9,,,RVKB9"));
}

} // namespace
} // namespace fldc
