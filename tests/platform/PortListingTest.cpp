#include "Helpers.h"
#include "PseudoTerminal.h"

#include "platform/qt/SettingsFile.h"
#include "platform/qt/serial/PortListing.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace fldc {
namespace {

TEST(PortNames, NumbersPinnedPortsFirstAndOthersFromTheLowestFreeNumber)
{
    struct Row {
        PortMap pinned;
        QStringList devices;
        PortMap expected;
    };
    const std::vector<Row> rows{
        {{}, {}, {}},
        {{},
         {u"U10"_s, u"S0"_s, u"U2"_s, u"A0"_s},
         {{1, u"A0"_s}, {2, u"S0"_s}, {3, u"U2"_s}, {4, u"U10"_s}}},
        {{{1, u"link to U2"_s}, {3, u"S0"_s}},
         {u"U0"_s, u"U2"_s, u"U10"_s, u"S0"_s},
         {{1, u"link to U2"_s}, {2, u"U0"_s}, {3, u"S0"_s}, {4, u"U10"_s}}},
        {{{2, u"gone"_s}}, {u"U0"_s, u"U2"_s}, {{1, u"U0"_s}, {2, u"gone"_s}, {3, u"U2"_s}}},
    };
    const auto realPath = [](const QString& path) {
        return path == u"link to U2"_s ? u"U2"_s : path;
    };
    for (const Row& row : rows)
        EXPECT_EQ(numberPorts(row.pinned, row.devices, realPath), row.expected);
}

TEST(PortNames, ReadsPortListsAndLeavesOutWhatItDoesNotUnderstand)
{
    const PortMap two{{1, u"/tmp/radio"_s}, {7, u"/dev/a=b"_s}};
    EXPECT_EQ(parsePortList(u"COM7=/dev/a=b;COM1=/tmp/radio"_s), two);
    EXPECT_EQ(parsePortList(u" COM1: = /tmp/radio ;;COM7=x;COM7=/dev/a=b;"_s), two);
    for (const char* text : {"", "COM1", "COM1=", "=/dev/x", "com1=/dev/x", "COM0=/x", "COM-1=/x",
                             "COM32768=/x", "COM1x=/x", "COM=/x", "LPT1=/x"})
        EXPECT_EQ(parsePortList(QString::fromLatin1(text)), PortMap()) << text;
}

TEST(PortListing, ListsTheEnvironmentsPortsOrElseThePinnedAndFoundOnes)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(u"settings"_s));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("[General]\nDebug=True\n[Ports]\nCOM203=/dev/serial/by-id/usb-x\nCOM209=a,b\n");
    file.close();
    const SettingsFile settings(file.fileName());
    PortListing ports(settings);
    EXPECT_TRUE(ports.portNames().contains(u"COM203:"_s));
    EXPECT_FALSE(ports.portNames().contains(u"COM209:"_s));
    EXPECT_EQ(ports.devicePath(203), u"/dev/serial/by-id/usb-x"_s);

    const PseudoTerminal far;
    qputenv("RV4100_FLDC_PORTS", "COM12=/dev/b;COM2=" + far.path().toLocal8Bit());
    EXPECT_EQ(ports.portNames(), QStringList({u"COM2:"_s, u"COM12:"_s}));
    EXPECT_EQ(ports.devicePath(203), QString());
    EXPECT_EQ(failureNumber([&] { ports.tryOpen(u"COM3:"_s); }), 8002);
    const tcflag_t before = far.state().c_lflag;
    EXPECT_EQ(failureNumber([&] { ports.tryOpen(u" COM2: "_s); }), 0);
    EXPECT_EQ(far.state().c_lflag, before);
    qputenv("RV4100_FLDC_PORTS", "");
    EXPECT_EQ(ports.portNames(), QStringList());
    qunsetenv("RV4100_FLDC_PORTS");
}

} // namespace
} // namespace fldc
