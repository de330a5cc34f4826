#include "Helpers.h"
#include "PseudoTerminal.h"

#include "platform/qt/SettingsFile.h"
#include "platform/qt/serial/PortListing.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <array>

#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/inotify.h>

namespace fldc {
namespace {

TEST(PortNames, NumbersPinnedPortsFirstAndOthersFromTheLowestFreeNumber)
{
    struct Row {
        PortMap pinned;
        QStringList devices;
        PortMap expected;
        PortMap given{};
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
        {{{3, u"S0"_s}},
         {u"S0"_s, u"U1"_s, u"U2"_s},
         {{2, u"U1"_s}, {3, u"S0"_s}, {4, u"U2"_s}},
         {{1, u"U0"_s}, {2, u"U1"_s}, {3, u"U2"_s}}},
    };
    const auto realPath = [](const QString& path) {
        return path == u"link to U2"_s ? u"U2"_s : path;
    };
    for (const Row& row : rows)
        EXPECT_EQ(numberPorts(row.pinned, row.devices, realPath, row.given), row.expected);
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

/// Tells when a file was opened, by whomever.
class OpeningWatch {
public:
    explicit OpeningWatch(const QString& path) : m_watch(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC))
    {
        if (::inotify_add_watch(m_watch.get(), path.toLocal8Bit().constData(), IN_OPEN) == -1)
            std::abort();
    }
    [[nodiscard]] bool sawOpening()
    {
        alignas(inotify_event) std::array<char, 4096> events{};
        return ::read(m_watch.get(), events.data(), events.size()) > 0;
    }

private:
    FileDescriptor m_watch;
};

using Ports = QList<IPortListing::Port>;

TEST(PortListing, ListsTheEnvironmentsPortsOrElseThePinnedAndFoundOnes)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(u"settings"_s));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("[General]\nDebug=True\n[Ports]\nCOM203=/dev/serial/by-id/usb-x\nCOM209=a,b\n");
    file.close();
    const SettingsFile settings(file.fileName());
    PortListing ports(settings);
    EXPECT_TRUE(ports.ports().contains(IPortListing::Port{u"COM203:"_s, false}));
    EXPECT_EQ(ports.devicePath(203), u"/dev/serial/by-id/usb-x"_s);
    EXPECT_EQ(ports.devicePath(209), QString());
    qputenv("RV4100_FLDC_PORTS", "COM12=/dev/b;COM2=/dev/a");
    EXPECT_EQ(ports.ports(), Ports({{u"COM2:"_s, false}, {u"COM12:"_s, false}}));
    EXPECT_EQ(ports.devicePath(203), QString());
    qputenv("RV4100_FLDC_PORTS", "");
    EXPECT_EQ(ports.ports(), Ports());
    qunsetenv("RV4100_FLDC_PORTS");
}

TEST(PortListing, TellsWhenADeviceComesOrGoes)
{
    const QTemporaryDir folder;
    const PseudoTerminal far;
    const QString link = folder.filePath(u"made/later"_s);
    const SettingsFile settings(u"/no/such/settings"_s);
    PortListing ports(settings);
    qputenv("RV4100_FLDC_PORTS", "COM2=" + link.toLocal8Bit());
    int told = 0;
    const auto watch = ports.watch([&told] { ++told; });
    QDir(folder.path()).mkdir(u"made"_s);
    QFile::link(far.path(), link);
    EXPECT_TRUE(waitUntil([&] { return told == 1; }));
    EXPECT_EQ(ports.details().value(0).obstacle, QString());
    QFile::remove(link);
    EXPECT_TRUE(waitUntil([&] { return told == 2; }));
    EXPECT_EQ(ports.details().value(0).obstacle, u"no adapter"_s);
    qunsetenv("RV4100_FLDC_PORTS");
}

// Opening a line raises its control lines, which key the transmitter of some radios.
TEST(PortListing, SeesWhoHoldsAPortWithoutOpeningIt)
{
    const SettingsFile settings(u"/no/such/settings"_s);
    PortListing ports(settings);
    const PseudoTerminal far;
    const FileDescriptor near = far.openNearEnd();
    OpeningWatch watch(far.path());
    qputenv("RV4100_FLDC_PORTS", "COM2=" + far.path().toLocal8Bit());
    EXPECT_EQ(ports.ports(), Ports({{u"COM2:"_s, true}}));
    EXPECT_TRUE(ports.isAvailable(u" COM2: "_s));
    EXPECT_FALSE(ports.isAvailable(u"COM3:"_s));
    ASSERT_EQ(::flock(near.get(), LOCK_EX), 0);
    EXPECT_EQ(ports.ports(), Ports({{u"COM2:"_s, false, true}}));
    EXPECT_FALSE(ports.isAvailable(u"COM2:"_s));
    EXPECT_FALSE(watch.sawOpening());
    const FileDescriptor opened = far.openNearEnd();
    EXPECT_TRUE(watch.sawOpening());
    qunsetenv("RV4100_FLDC_PORTS");
}

} // namespace
} // namespace fldc
