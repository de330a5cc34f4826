// A firmware file. What an accepted one is taken to hold must be what a second, slow little reader
// finds in it, and compressed data must inflate to the plain data.

#include "Fuzzing.h"
#include "firmware/FirmwareReading.h"
#include "shared/NumberText.h"
#include "support/VirtualPlatform.h"

using namespace fldc;
using namespace Qt::StringLiterals;

namespace {

struct Table {
    std::int32_t address = 0;
    int units = 0;
    QByteArray bytes; ///< with the byte that makes them even
};

struct Image {
    QString header;
    int unitBytes = 0;
    std::vector<Table> tables;
    std::uint32_t next = 0; ///< address behind the last record

    void addRecord(const QByteArray& line)
    {
        const int digits = 2 * (line[1] - '0') + 2;
        const std::uint32_t address = line.mid(4, digits).toUInt(nullptr, 16);
        const int units = (line.mid(2, 2).toInt(nullptr, 16) - digits / 2 - 1) / unitBytes;
        QByteArray data = line.mid(4 + digits, qsizetype{2} * units * unitBytes);
        if (tables.empty() || address != next) {
            if (!tables.empty() && tables.back().units % 2 != 0 && unitBytes == 1) {
                tables.back().bytes += '\xFF';
                ++tables.back().units;
            }
            const bool pad = header.contains(u"JWA2"_s) && address % 2 != 0;
            tables.push_back({static_cast<std::int32_t>(address - (pad ? 1 : 0)), pad, {}});
            data = (pad ? "FF" : "") + data;
        }
        // Half a byte counts where that makes their number even.
        const qsizetype count = data.size() / 2 + (data.size() % 4 == 3 ? 1 : 0);
        for (qsizetype i = 0; i < count; ++i)
            tables.back().bytes += static_cast<char>(data.mid(2 * i, 2).toUInt(nullptr, 16));
        tables.back().units += units;
        next = address + static_cast<std::uint32_t>(units);
    }

    [[nodiscard]] QString tag() const
    {
        for (const Table& table : tables) {
            const QByteArray hex = table.bytes.toHex();
            qsizetype i = hex.indexOf("2a2f69426262456c2f2a");
            while (i % 4 > 0)
                i = hex.indexOf("2a2f69426262456c2f2a", i + 1);
            if (i < 0 || unitBytes != 2 || header.startsWith(u"JVA"_s))
                continue;
            QString text;
            for (i += 20; i < hex.size(); i += 4) {
                const auto unit = static_cast<char16_t>(hex.mid(i, 4).toUInt(nullptr, 16));
                if (unit == 0 && !text.isEmpty())
                    return text;
                text += unit == 0 ? QString() : QString(QChar(unit));
            }
            return {};
        }
        return header;
    }
};

std::vector<Image> imagesIn(QByteArray text)
{
    std::vector<Image> images;
    Image image;
    int bits = 0;
    for (const QByteArray& line : text.replace("\r\n", "\n").replace('\r', '\n').split('\n')) {
        if (line.startsWith("DW")) {
            bits = readNumber(QString::fromLatin1(line.mid(2))).value_or(0);
        } else if (line.startsWith("S0")) {
            const QByteArray codes = QByteArray::fromHex(line.mid(8, (line.size() - 10) / 2 * 2));
            image = {QString::fromLatin1(codes), 0, {}};
            while (image.header.startsWith(u' '))
                image.header.remove(0, 1);
            while (image.header.endsWith(u' '))
                image.header.chop(1);
            bits = bits != 0 ? bits : image.header.contains(u"JWA2"_s) ? 8 : 16;
            image.unitBytes = bits / 8;
        } else if (line.startsWith("S7") || line.startsWith("S8") || line.startsWith("S9")) {
            for (Table& table : image.tables)
                table.bytes += QByteArray(table.bytes.size() % 2, '\0');
            images.push_back(image);
            bits = 0;
        } else if (line.startsWith('S')) {
            image.addRecord(line);
        }
    }
    return images;
}

void compare(const clsFile& file, const Image& image)
{
    EXPECT_EQ(file.TagName(), image.tag());
    EXPECT_EQ(file.intNumberOfBits(), 8 * image.unitBytes);
    EXPECT_EQ(static_cast<std::size_t>(file.Definitiontables()->Count()), image.tables.size());
    for (std::size_t i = 0; i < image.tables.size(); ++i) {
        const DataDefinition run = file.Definitiontables()->Item(static_cast<std::int32_t>(i));
        EXPECT_EQ(run.Address, QString::number(image.tables[i].address));
        EXPECT_EQ(run.Length, image.tables[i].units);
        EXPECT_EQ(run.Datablocks->data(), image.tables[i].bytes);
        if (run.Datablocks->CompressedCount() > 0)
            EXPECT_EQ(test::inflated(*run.Datablocks),
                      image.tables[i].bytes.left(run.Datablocks->Count()));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    const QByteArray text(reinterpret_cast<const char*>(bytes), static_cast<qsizetype>(size));
    VirtualPlatform machine;
    machine.files.files[u"f"_s].content = text;
    AnyMessages messages;
    const ErrorBoxScope scope(messages);
    const auto files = std::make_shared<colFiles>();
    const auto compression = size % 16 == 0 ? Compression::Best : Compression::Zlib;
    const auto problem = SRecordReader(machine.files, files, compression).read(u"f"_s);
    EXPECT_EQ(lastError().number(), problem ? 34 : 0);
    if (problem || messages.boxes > 0) // a field that could not be read is taken for 0
        return 0;
    const std::vector<Image> images = imagesIn(text);
    EXPECT_EQ(static_cast<std::size_t>(files->Count()), images.size());
    for (std::size_t i = 0; i < images.size(); ++i)
        compare(*files->Item(static_cast<std::int32_t>(i + 1)), images[i]);
    return 0;
}
