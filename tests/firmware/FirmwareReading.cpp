#include "FirmwareReading.h"

#include "shared/HexText.h"
#include "shared/LastError.h"
#include "support/VirtualPlatform.h"

#include <zlib.h>

namespace fldc::test {

Outcome readFirmware(const QByteArray& text, Compression compression, const QStringList& boxes)
{
    VirtualPlatform machine;
    machine.files.files[QStringLiteral("f")].content = text;
    for (const QString& box : boxes)
        machine.messages.expectBox(box);

    Outcome outcome;
    lastError().set(Code::NoResponse); // left over from something else
    SRecordReader reader(machine.files, outcome.images, compression);
    outcome.problem = reader.read(QStringLiteral("f"));
    outcome.lastError = lastError().number();
    return outcome;
}

QByteArray madeSlow(const QByteArray& text)
{
    QByteArray slow;
    qsizetype start = 0; // of the present line
    for (qsizetype i = 0; i <= text.size(); ++i) {
        if (i < text.size() && text[i] != '\r' && text[i] != '\n')
            continue;
        const QByteArray line = text.sliced(start, i - start);
        bool isCounted = false;
        const int count = line.mid(2, 2).toInt(&isCounted, 16);
        const bool isData = line.startsWith("S1") || line.startsWith("S2") || line.startsWith("S3");
        const bool isWhole = isData && isCounted && line.size() == 4 + 2 * count;
        slow += line;
        if (isWhole && count >= line[1] - '0' + 2) // with an address and a checksum
            slow += ' ';
        slow += text.mid(i, 1);
        start = i + 1;
    }
    return slow;
}

QByteArray inflated(colDataBlocks& blocks)
{
    QByteArray packed;
    QByteArray chunk;
    for (std::int32_t length = 510; blocks.GetNextChunk(length, true, chunk); length = 510)
        packed += chunk;
    QByteArray plain(blocks.Count(), '\0');
    auto size = static_cast<uLongf>(plain.size());
    auto taken = static_cast<uLong>(packed.size());
    const int result = uncompress2(reinterpret_cast<Bytef*>(plain.data()), &size,
                                   reinterpret_cast<const Bytef*>(packed.constData()), &taken);
    const QByteArray rest = packed.mid(static_cast<qsizetype>(taken));
    const bool isWhole = result == Z_OK && size == static_cast<uLongf>(plain.size()) &&
                         packed.size() == blocks.CompressedCount() && packed.size() % 2 == 0 &&
                         (rest.isEmpty() || rest == QByteArray(1, '\0'));
    return isWhole ? plain : QByteArray();
}

std::string describe(const colFiles& images)
{
    QString text;
    for (const auto& image : images.items()) {
        text += QStringLiteral("%1 '%2' %3 %4/%5")
                    .arg(image->Name(), image->TagName())
                    .arg(image->intNumberOfBits())
                    .arg(image->strFileType(), image->strFileTerminator());
        for (std::int32_t i = 0; i < image->CountTargets(); ++i)
            text += QStringLiteral(" <%1:%2>").arg(image->Hardware(i)).arg(image->DeviceID(i));
        for (std::int32_t i = 0; i < image->Definitiontables()->Count(); ++i) {
            const DataDefinition table = image->Definitiontables()->Item(i);
            text += QStringLiteral(" %1+%2(%3)=%4")
                        .arg(table.Address)
                        .arg(table.Length)
                        .arg(table.Datablocks->Count())
                        .arg(bytesToHex(table.Datablocks->data()));
        }
        text += u'\n';
    }
    return text.toStdString();
}

} // namespace fldc::test
