// Settings files and the texts that name ports. What is written is read back, and nothing else in
// the file changes its meaning.

#include "Fuzzing.h"
#include "platform/linux/LinuxSystem.h"
#include "platform/qt/SettingsFile.h"
#include "platform/qt/serial/PortListing.h"
#include "platform/qt/serial/PortNames.h"
#include "platform/qt/serial/PortText.h"

#include <QFile>
#include <QTemporaryDir>

using namespace fldc;
using namespace Qt::StringLiterals;

namespace {

void checkSettings(const QString& path, const QByteArray& content, const QString& value)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
    file.close();
    SettingsFile settings(path);
    const auto other = settings.readText(u"LastFile"_s);
    const auto ports = settings.section(u"Ports"_s);
    settings.writeText(u"Debug"_s, value);
    EXPECT_EQ(settings.readText(u"Debug"_s), value);
    EXPECT_EQ(settings.readText(u"LastFile"_s), other);
    EXPECT_EQ(settings.section(u"Ports"_s), ports);
}

void checkPorts(const QString& text, const PortListing& listing)
{
    const ChosenPort chosen = choosePort(text, listing);
    EXPECT_NE(chosen.device.isEmpty(), chosen.error.isEmpty());
    const PortMap pinned = parsePortList(text);
    QString again;
    for (auto port = pinned.begin(); port != pinned.end(); ++port) {
        EXPECT_EQ(portNumber(portName(port.key())), port.key());
        again += portName(port.key()) + u'=' + port.value() + u';';
    }
    EXPECT_EQ(parsePortList(again), pinned);
    const QStringList devices = text.split(u'\n');
    const PortMap numbered = numberPorts(pinned, devices, [](const QString& path) { return path; });
    for (auto port = pinned.begin(); port != pinned.end(); ++port)
        EXPECT_EQ(numbered.value(port.key()), port.value());
    for (const QString& device : devices)
        EXPECT_TRUE(pinned.values().contains(device) || numbered.values().count(device) == 1);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    static const QTemporaryDir folder;
    static const LinuxSystem nothing(folder.path());
    static int number = 0; // the settings' library remembers files by name
    FuzzedDataProvider fuzz(bytes, size);
    const auto text = [&] { return QByteArray::fromStdString(fuzz.ConsumeRandomLengthString()); };
    const QString value = QString::fromUtf8(text());
    const QByteArray content = text();
    const QString path = folder.filePath(QString::number(++number));
    checkSettings(path, content, value);
    const SettingsFile settings(path);
    checkPorts(QString::fromUtf8(text()), PortListing(settings, nothing));
    QFile::remove(path);
    return 0;
}
