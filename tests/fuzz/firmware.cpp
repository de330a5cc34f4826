// A firmware file. What the reader makes of it must be what a second, slow little reader makes of
// it, and compressed data must inflate to the plain data.

#include "../firmware/FirmwareReading.h"
#include "Fuzzing.h"
#include "platform/ShowError.h"
#include "shared/NumberText.h"
#include "support/VirtualPlatform.h"

using namespace fldc;

namespace {

struct NotAccepted {}; // thrown where the file is not valid
struct BadField {};    // thrown where a box is shown

int digit(char c)
{
    const qsizetype at = QByteArray("0123456789ABCDEFabcdef").indexOf(c);
    return static_cast<int>(at > 15 ? at - 6 : at);
}

std::uint32_t number(const QByteArray& digits)
{
    std::uint64_t value = 0;
    for (const char c : digits) {
        value = value * 16 + static_cast<std::uint64_t>(digit(c));
        if (digit(c) < 0 || value > 0xFFFFFFFF)
            throw BadField();
    }
    return digits.isEmpty() ? throw BadField() : static_cast<std::uint32_t>(value);
}

struct Table {
    std::int32_t address = 0;
    int length = 0;
    QByteArray bytes;
};

class LittleReader {
public:
    // The images in the form of test::describe().
    std::string read(QByteArray text)
    {
        m_lines = text.replace("\r\n", "\n").replace('\r', '\n').split('\n');
        if (m_lines.last().isEmpty())
            m_lines.removeLast();
        for (m_at = 0; m_at < m_lines.size(); ++m_at)
            readLine(m_lines[m_at], m_lines[m_at].left(2));
        return m_complete ? m_done : throw NotAccepted();
    }

private:
    void readLine(const QByteArray& line, const QByteArray& type)
    {
        const QString text = QString::fromLatin1(line);
        if (type == "DW") {
            const int bits = readNumber(text.mid(2)).value_or(0);
            m_bits = bits == 8 || bits == 16 || bits == 32 ? bits : throw NotAccepted();
        } else if (type == "MD" && text.contains(u',')) {
            const QStringList parts = text.mid(2).split(u'"');
            if (parts.size() < 3)
                throw NotAccepted();
            const QString bar = m_hardwares.isEmpty() ? QString() : QStringLiteral("|");
            m_hardwares += bar + parts[1];
            m_devices += bar + text.mid(text.indexOf(u',') + 1);
            m_hasTarget = !parts[1].isEmpty();
        } else if (type == "S0") {
            readHeader(line);
        } else if (type == "S1" || type == "S2" || type == "S3") {
            readData(type);
        } else if (type != "//" && type != "CI" && type != "MD" && !type.isEmpty()) {
            throw NotAccepted();
        }
    }

    void readHeader(const QByteArray& line)
    {
        m_name += m_complete ? "1" : "";
        m_complete = false;
        if (line.size() < 10)
            throw BadField();
        m_tag.clear();
        for (qsizetype i = 8; i + 3 < line.size(); i += 2)
            m_tag += QChar(static_cast<char16_t>(number(line.mid(i, 2))));
        while (m_tag.startsWith(u' '))
            m_tag.remove(0, 1);
        while (m_tag.endsWith(u' '))
            m_tag.chop(1);
        const bool isBytes = m_tag.contains(QStringLiteral("JWA2"));
        m_bits = m_bits != 0 ? m_bits : isBytes ? 8 : 16;
        m_imageBits = m_bits;
        m_targets.clear();
        m_seen = true;
        if (!m_hasTarget)
            return;
        const QStringList hardwares = m_hardwares.split(u'|');
        const QStringList devices = m_devices.split(u'|');
        if (hardwares.size() > devices.size())
            throw NotAccepted();
        for (qsizetype i = 0; i < hardwares.size(); ++i)
            m_targets += QStringLiteral(" <%1:%2>").arg(
                hardwares[i], QString::number(readNumber(devices[i]).value_or(0)));
    }

    void readData(const QByteArray& type)
    {
        const QByteArray terminator = type == "S1" ? "S9" : type == "S2" ? "S8" : "S7";
        if (!m_seen)
            throw NotAccepted();
        m_tables.clear();
        std::uint32_t next = 0x7FFFFFFF;
        for (; m_at < m_lines.size() && m_lines[m_at].left(2) == type; ++m_at)
            next = readRecord(m_lines[m_at], 2 * (type[1] - '0') + 2, next);
        if (m_at == m_lines.size() || m_lines[m_at].left(2) != terminator ||
            m_tables.back().bytes.isEmpty())
            throw NotAccepted();
        QString text;
        for (const Table& table : m_tables)
            text += QStringLiteral(" %1+%2(%3)=")
                        .arg(QString::number(table.address), QString::number(table.length),
                             QString::number(table.bytes.size())) +
                    QString::fromLatin1(even(table.bytes).toHex().toUpper());
        text = QString::fromLatin1(m_name) + QStringLiteral(" '") + embeddedTag() +
               QStringLiteral("' %1 ").arg(m_imageBits) +
               QString::fromLatin1(type + '/' + terminator) + m_targets + text + u'\n';
        m_done += text.toStdString();
        m_complete = true;
        m_bits = 0;
        m_seen = m_hasTarget = false;
        m_hardwares = m_devices = QString();
    }

    // Returns the address behind the record.
    std::uint32_t readRecord(const QByteArray& line, int digits, std::uint32_t next)
    {
        const int unitBytes = m_imageBits / 8;
        const std::uint32_t address = number(line.mid(4, digits));
        bool pad = false;
        if (address != next) {
            if (!m_tables.empty() && m_tables.back().length % 2 != 0 && unitBytes == 1) {
                m_tables.back().bytes += '\xFF';
                ++m_tables.back().length;
            }
            if (!m_tables.empty() && m_tables.back().bytes.isEmpty())
                throw NotAccepted();
            pad = m_tag.contains(QStringLiteral("JWA2")) && address % 2 != 0;
            m_tables.push_back({static_cast<std::int32_t>(address - (pad ? 1 : 0)), pad, {}});
        } else if (m_tables.empty()) {
            throw NotAccepted();
        }
        const int bytes = static_cast<int>(number(line.mid(2, 2))) - digits / 2 - 1;
        const int units = bytes < 0 ? throw BadField() : bytes / unitBytes;
        const QByteArray data = (pad ? "FF" : "") + line.mid(4 + digits, 2 * units * unitBytes);
        // Half a byte counts where that makes the number of bytes even.
        const qsizetype count = data.size() / 2 + (data.size() % 4 == 3 ? 1 : 0);
        for (qsizetype i = 0; i < 2 * count; i += 2) {
            const int low = digit(data[qMin(i + 1, data.size() - 1)]);
            if (digit(data[i]) < 0 || low < 0)
                throw NotAccepted();
            m_tables.back().bytes += static_cast<char>(number(data.mid(i, 2)));
        }
        m_tables.back().length += units;
        return address + static_cast<std::uint32_t>(units);
    }

    static QByteArray even(const QByteArray& bytes)
    {
        return bytes.size() % 2 == 0 ? bytes : bytes + '\0';
    }

    [[nodiscard]] QString embeddedTag() const
    {
        if (m_imageBits != 16 || m_tag.startsWith(QStringLiteral("JVA")))
            return m_tag;
        constexpr auto marker = "2a2f69426262456c2f2a";
        for (const Table& table : m_tables) {
            const QByteArray hex = even(table.bytes).toHex();
            for (qsizetype i = hex.indexOf(marker); i >= 0; i = hex.indexOf(marker, i + 1)) {
                if (i % 4 != 0)
                    continue;
                QString tag;
                for (i += 20; i < hex.size(); i += 4) {
                    const auto unit = static_cast<char16_t>(number(hex.mid(i, 4)));
                    if (unit == 0 && !tag.isEmpty())
                        return tag;
                    if (unit != 0)
                        tag += QChar(unit);
                }
                return {};
            }
        }
        return m_tag;
    }

    QList<QByteArray> m_lines;
    qsizetype m_at = 0;
    QByteArray m_name = "f";
    QString m_tag;
    int m_bits = 0;
    int m_imageBits = 0;
    QString m_hardwares;
    QString m_devices;
    QString m_targets;
    bool m_hasTarget = false;
    bool m_seen = false;
    bool m_complete = false;
    std::vector<Table> m_tables;
    std::string m_done;
};

void checkData(const colFiles& images)
{
    for (const auto& image : images.items()) {
        for (std::int32_t i = 0; i < image->Definitiontables()->Count(); ++i) {
            colDataBlocks& blocks = *image->Definitiontables()->Datablocks(i);
            EXPECT_TRUE(blocks.finished());
            if (blocks.CompressedCount() > 0)
                EXPECT_EQ(test::inflated(blocks), blocks.data().left(blocks.Count()));
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    const QByteArray text(reinterpret_cast<const char*>(bytes), static_cast<qsizetype>(size));
    VirtualPlatform machine;
    machine.files.files[QStringLiteral("f")].content = text;
    AnyMessages messages;
    const ErrorBoxScope scope(messages);
    const auto images = std::make_shared<colFiles>();
    const auto compression = size % 16 == 0 ? Compression::Best : Compression::Zlib;
    const auto problem =
        SRecordReader(machine.files, images, compression).read(QStringLiteral("f"));
    EXPECT_EQ(lastError().number(), problem ? 34 : 0);
    try {
        EXPECT_EQ(LittleReader().read(text), test::describe(*images));
        EXPECT_FALSE(problem);
        EXPECT_EQ(messages.boxes, 0);
    } catch (const NotAccepted&) {
        EXPECT_TRUE(problem);
    } catch (const BadField&) {
        EXPECT_GT(messages.boxes, 0);
    }
    if (!problem)
        checkData(*images);
    return 0;
}
