#include "Helpers.h"

#include "platform/linux/DeviceFacts.h"
#include "platform/linux/PortFindings.h"
#include "platform/qt/SettingsFile.h"
#include "platform/qt/serial/PortListing.h"
#include "platform/qt/serial/PortText.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <map>
#include <set>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

namespace fldc {
namespace {

/// A machine in a folder: an adapter at ttyUSB0, a built-in port ttyS0 and one in reserve, ttyS1.
class FakeSystem final : public LinuxSystem {
public:
    FakeSystem() : FakeSystem(std::make_unique<QTemporaryDir>()) {}

    void write(const QString& path, const QByteArray& content) const
    {
        QFile file(made(path));
        if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
            std::abort();
    }
    void link(const QString& path, const QString& target) const
    {
        if (!QFile::link(target, made(path)))
            std::abort();
    }
    void addProcess(int pid, const QByteArray& program, const QStringList& open = {}) const
    {
        const QString folder = u"/proc/%1/"_s.arg(pid);
        write(folder + u"comm"_s, program + '\n');
        QDir().mkpath(m_folder->path() + folder + u"fd"_s);
        for (int i = 0; i < open.size(); ++i)
            link(folder + u"fd/%1"_s.arg(i), open[i]);
    }
    void addTerminal(const QString& name, unsigned major, unsigned minor, const QString& device)
    {
        DeviceNode& node = nodes[u"/dev/"_s + name];
        node.mode = S_IFCHR | 0660;
        node.fileSystem = makedev(0, 6);
        node.inode = 100 + minor;
        node.device = makedev(major, minor);
        node.group = 20;
        node.owner = 1;
        node.readable = node.writable = true;
        write(u"/dev/"_s + name, {});
        if (device.isEmpty())
            return;
        const QString folder = device + u"/tty/"_s + name;
        write(folder + u"/type"_s, name == u"ttyS1"_s ? "0\n" : "4\n");
        link(folder + u"/device"_s, u"../.."_s);
        link(folder + u"/subsystem"_s, u"../../class/tty"_s);
        QDir().mkpath(m_folder->path() + u"/sys/class/tty"_s);
        link(u"/sys/class/tty/"_s + name, m_folder->path() + folder);
        link(u"/sys/dev/char/%1:%2"_s.arg(major).arg(minor), m_folder->path() + folder);
    }

    [[nodiscard]] DeviceNode node(const QString& path) const override
    {
        const auto found = nodes.find(path.startsWith(u"/proc/"_s) ? linkText(path) : path);
        DeviceNode none;
        none.error = ENOENT;
        return found == nodes.end() ? none : found->second;
    }
    [[nodiscard]] QString groupName(gid_t) const override { return u"dialout"_s; }
    [[nodiscard]] bool joinsAtNextLogin(gid_t) const override { return true; }
    [[nodiscard]] Links links(const QString& folder) const override
    {
        return hidden.contains(folder) ? Links{{}, EACCES} : LinuxSystem::links(folder);
    }

    std::map<QString, DeviceNode> nodes;
    std::set<QString> hidden;

private:
    explicit FakeSystem(std::unique_ptr<QTemporaryDir> folder)
        : LinuxSystem(folder->path()), m_folder(std::move(folder))
    {
        const QString usb = u"/sys/devices/pci/usb1/1-2"_s;
        const std::pair<const char*, const char*> about[]{
            {"idVendor", "0403\n"},       {"idProduct", "6001\n"}, {"serial", "A50285BI\n"},
            {"product", "FT232R UART\n"}, {"dev", "189:4\n"},
        };
        for (const auto& [name, content] : about)
            write(usb + u'/' + QString::fromLatin1(name), content);
        addTerminal(u"ttyUSB0"_s, 188, 0, usb + u"/1-2:1.0/ttyUSB0"_s);
        write(usb + u"/1-2:1.0/ttyUSB0/latency_timer"_s, "16\n");
        link(usb + u"/1-2:1.0/ttyUSB0/driver"_s, u"../../drivers/ftdi_sio"_s);
        const QString uart = u"/sys/devices/pnp0/00:01"_s;
        addTerminal(u"ttyS0"_s, 4, 64, uart + u"/00:01:0/00:01:0.0"_s);
        link(uart + u"/driver"_s, u"../drivers/serial8250"_s);
        for (const char* between : {"/00:01:0", "/00:01:0/00:01:0.0"})
            link(uart + QString::fromLatin1(between) + u"/subsystem"_s, u"../bus/serial-base"_s);
        addTerminal(u"ttyS1"_s, 4, 65, u"/sys/devices/platform/ttyS1"_s);
        addTerminal(u"pts/3"_s, 136, 3, {});
        link(u"/dev/serial/by-id/usb-FTDI-A50285BI"_s, u"../../ttyUSB0"_s);
        link(u"/dev/serial/by-path/pci-usb-2"_s, u"../../ttyUSB0"_s);
        write(u"/proc/locks"_s, "");
        addProcess(1, "systemd", {u"/dev/null"_s, u"socket:[12]"_s});
    }
    [[nodiscard]] QString made(const QString& path) const
    {
        QDir().mkpath(m_folder->path() + path.section(u'/', 0, -2));
        return m_folder->path() + path;
    }

    std::unique_ptr<QTemporaryDir> m_folder;
};

const QString adapter = u"/dev/ttyUSB0"_s;

TEST(DeviceFacts, TheStateIsWhatALookCanTell)
{
    struct Row {
        const char* about;
        std::function<void(FakeSystem&)> prepare;
        QString device;
        PortState state;
    };
    const auto locks = [](const QByteArray& line) {
        return [line](FakeSystem& system) { system.write(u"/proc/locks"_s, line); };
    };
    const auto nothing = [](FakeSystem&) {};
    using enum PortState;
    const std::vector<Row> rows{
        {"nobody uses it", nothing, adapter, Free},
        {"by a stable name", nothing, u"/dev/serial/by-path/pci-usb-2"_s, Free},
        {"missing", nothing, u"/dev/ttyUSB7"_s, NoDevice},
        {"without hardware", nothing, u"/dev/ttyS1"_s, NoDevice},
        {"a file", [](FakeSystem& s) { s.nodes[adapter].mode = S_IFREG | 0666; }, adapter,
         NoDevice},
        {"another device", [](FakeSystem& s) { s.nodes[adapter].device = makedev(1, 3); }, adapter,
         NoDevice},
        {"a folder that is closed", [](FakeSystem& s) { s.nodes[adapter].error = EACCES; }, adapter,
         NoPermission},
        {"only readable", [](FakeSystem& s) { s.nodes[adapter].writable = false; }, adapter,
         NoPermission},
        {"locked", locks("1: FLOCK  ADVISORY  WRITE 812 00:06:100 0 EOF\n"), adapter, InUse},
        {"locked without a process", locks("7: OFDLCK ADVISORY  READ -1 00:06:100 0 EOF\n"),
         adapter, InUse},
        {"somebody waits for a lock that is gone",
         locks("1: -> FLOCK  ADVISORY  WRITE 812 00:06:100 0 EOF\n"), adapter, Free},
        {"locks of other files",
         locks("1: FLOCK ADVISORY WRITE 8 00:05:100 0 EOF\n2: POSIX ADVISORY READ 8 00:06:1000 0\n"
               "broken\n"),
         adapter, Free},
        {"open", [](FakeSystem& s) { s.addProcess(812, "minicom", {adapter}); }, adapter, InUse},
        {"open by a name of a container's own",
         [](FakeSystem& s) {
             s.nodes[u"/dev/radio"_s] = s.nodes[adapter];
             s.addProcess(812, "minicom", {u"/dev/radio"_s});
         },
         adapter, InUse},
        {"the far end has it open",
         [](FakeSystem& s) {
             s.addProcess(812, "radio", {u"/dev/ptmx"_s, u"/dev/pts/3"_s});
             s.write(u"/proc/812/fdinfo/0"_s, "pos:\t0\ntty-index:\t3\n");
         },
         u"/dev/pts/3"_s, Free},
        {"the far end of another line has it open",
         [](FakeSystem& s) {
             s.addProcess(812, "screen", {u"/dev/ptmx"_s, u"/dev/pts/3"_s});
             s.write(u"/proc/812/fdinfo/0"_s, "pos:\t0\ntty-index:\t33\n");
         },
         u"/dev/pts/3"_s, InUse},
        {"the same number in a container",
         [](FakeSystem& s) {
             DeviceNode& other = s.nodes[u"/dev/pts/03"_s] = s.nodes[u"/dev/pts/3"_s];
             other.fileSystem = makedev(0, 99);
             s.addProcess(812, "bash", {u"/dev/pts/03"_s});
         },
         u"/dev/pts/3"_s, Free},
    };
    for (const Row& row : rows) {
        FakeSystem system;
        row.prepare(system);
        EXPECT_EQ(DeviceInspector(system).state(row.device), row.state) << row.about;
        EXPECT_EQ(DeviceInspector(system).facts(row.device).state, row.state) << row.about;
    }
}

TEST(DeviceFacts, TellTheAdapterAndWhoHoldsIt)
{
    FakeSystem system;
    const DeviceFacts idle =
        DeviceInspector(system).facts(u"/dev/serial/by-id/usb-FTDI-A50285BI"_s);
    EXPECT_EQ(idle.device, adapter);
    EXPECT_EQ(idle.stableNames, (QStringList{u"/dev/serial/by-id/usb-FTDI-A50285BI"_s,
                                             u"/dev/serial/by-path/pci-usb-2"_s}));
    EXPECT_EQ((QStringList{idle.hardware.vendor, idle.hardware.product, idle.hardware.serial,
                           idle.hardware.description, idle.hardware.driver}),
              (QStringList{u"0403"_s, u"6001"_s, u"A50285BI"_s, u"FT232R UART"_s, u"ftdi_sio"_s}));
    EXPECT_EQ(idle.hardware.latencyMilliseconds, 16);
    EXPECT_EQ(idle.grantingGroup, QString());
    EXPECT_EQ(idle.locked, false);
    EXPECT_TRUE(idle.holdersComplete);
    EXPECT_EQ(idle.user(), std::nullopt);
    EXPECT_EQ(idle.services[0].processes, QList<Process>());
    EXPECT_EQ(idle.services[0].toldToLeaveAlone, std::nullopt); // udev wrote nothing

    const DeviceFacts builtIn = DeviceInspector(system).facts(u"/dev/ttyS0"_s);
    EXPECT_EQ(builtIn.hardware.driver, u"serial8250"_s);
    EXPECT_EQ(builtIn.hardware.vendor, QString());
    EXPECT_EQ(builtIn.hardware.latencyMilliseconds, std::nullopt);

    system.addProcess(812, "a-long-program-", {adapter, adapter});
    system.write(u"/proc/812/cmdline"_s, QByteArray("/usr/bin/a-long-program-name\0-x\0", 33));
    system.addProcess(700, "ModemManager");
    system.hidden.insert(u"/proc/700/fd"_s);
    system.write(u"/run/udev/data/c188:0"_s, "S:serial/by-id/x\nE:ID_MM_CANDIDATE=1\n");
    system.write(u"/run/udev/data/c189:4"_s,
                 "E:ID_MM_DEVICE_IGNORE=1\nE:BRLTTY_BRAILLE_DRIVER=bm\n");
    system.write(u"/proc/locks"_s, "1: FLOCK  ADVISORY  WRITE 812 00:06:100 0 EOF\n");
    const DeviceFacts held = DeviceInspector(system).facts(adapter);
    const Process program{812, u"a-long-program-name"_s};
    EXPECT_EQ(held.holders, QList<Holder>({{program, false}}));
    EXPECT_EQ(held.lockOwners, QList<Process>{program});
    EXPECT_FALSE(held.holdersComplete);
    EXPECT_EQ(held.user(), program);
    EXPECT_EQ(portObstacle(held)->what, u"in use by a-long-program-name (process 812)"_s);
    EXPECT_EQ(portObstacle(held)->remedy, u"End that program."_s);
    const ServiceFacts& modems = held.services[0];
    EXPECT_EQ(modems.processes, QList<Process>({{700, u"ModemManager"_s}}));
    EXPECT_EQ(modems.holdsDevice, std::nullopt); // its files can't be seen
    EXPECT_EQ(modems.toldToLeaveAlone, true);
    EXPECT_EQ(modems.property, u"ID_MM_DEVICE_IGNORE=1"_s);
    EXPECT_EQ(held.services[1].holdsDevice, false); // it does not run
    EXPECT_EQ(held.services[1].property, u"BRLTTY_BRAILLE_DRIVER=bm"_s);

    // The process that took the lock has ended and its number is another's.
    system.addProcess(813, "bystander");
    system.write(u"/proc/locks"_s, "1: FLOCK  ADVISORY  WRITE 813 00:06:100 0 EOF\n");
    EXPECT_EQ(DeviceInspector(system).facts(adapter).lockOwners, QList<Process>{Process()});

    DeviceNode& node = system.nodes[adapter];
    node.readable = node.writable = false;
    EXPECT_EQ(DeviceInspector(system).facts(adapter).grantingGroup, u"dialout"_s);
    EXPECT_TRUE(DeviceInspector(system).facts(adapter).grantedAtNextLogin);
    const auto noRights = portObstacle(DeviceInspector(system).facts(adapter));
    EXPECT_EQ(noRights->what, u"no rights"_s);
    EXPECT_TRUE(noRights->remedy.contains(u"the group dialout"_s));
    node.mode = S_IFCHR | 0640;
    EXPECT_EQ(DeviceInspector(system).facts(adapter).grantingGroup, QString());
}

TEST(PortText, MeansANumberAPathAnAdapterOrAPinnedName)
{
    FakeSystem system;
    const QTemporaryDir folder;
    QFile file(folder.filePath(u"settings"_s));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("[Ports]\nCOM5=/dev/serial/by-id/usb-FTDI-A50285BI\nbench-left=/dev/ttyS0\n"
               "odd=\"/dev/ttyS0\\x0/x\"\n=x\n");
    file.close();
    const SettingsFile settings(file.fileName());
    PortListing ports(settings, system);
    EXPECT_EQ(ports.devices(),
              PortMap({{1, u"/dev/ttyS0"_s}, {5, u"/dev/serial/by-id/usb-FTDI-A50285BI"_s}}));

    struct Row {
        QString text, name, device;
    };
    const auto expect = [&](const std::vector<Row>& rows) {
        for (const Row& row : rows) {
            const ChosenPort port = choosePort(row.text, ports);
            EXPECT_EQ(port.name, row.name) << qPrintable(row.text);
            EXPECT_EQ(port.device, row.device) << qPrintable(row.text);
            EXPECT_EQ(port.error.isEmpty(), !row.device.isEmpty()) << qPrintable(row.text);
        }
    };
    const QString pinned = u"/dev/serial/by-id/usb-FTDI-A50285BI"_s;
    expect({{u"COM1"_s, u"COM1"_s, u"/dev/ttyS0"_s},
            {u"5"_s, u"COM5"_s, pinned},
            {u"COM5:"_s, u"COM5"_s, pinned},
            {u"COM4"_s, u"COM4"_s, {}},
            {u"0"_s, u"COM0"_s, {}},
            {u"-1"_s, u"-1"_s, {}},
            {u"bench-left"_s, u"bench-left"_s, u"/dev/ttyS0"_s},
            {u"bench-right"_s, u"bench-right"_s, {}},
            {u"odd"_s, u"odd"_s, {}}, // a zero within its path
            {u""_s, u""_s, {}},
            {u"/dev/gone"_s, u"/dev/gone"_s, u"/dev/gone"_s},
            {u"usb:A50285BI"_s, u"usb:A50285BI"_s, adapter},
            {u"usb:a50285bi"_s, u"usb:a50285bi"_s, {}},
            {u"usb:"_s, u"usb:"_s, {}}});

    // A second port of the same adapter.
    system.addTerminal(u"ttyUSB1"_s, 188, 1, u"/sys/devices/pci/usb1/1-2/1-2:1.1/ttyUSB1"_s);
    expect({{u"usb:A50285BI"_s, u"usb:A50285BI"_s, {}}});
    EXPECT_EQ(choosePort(u"usb:A50285BI"_s, ports).error,
              u"Several ports have the serial number A50285BI: /dev/ttyUSB0, /dev/ttyUSB1."_s);
}

} // namespace
} // namespace fldc
