#include "FirmwareReading.h"

#include "shared/LastError.h"
#include "support/VirtualPlatform.h"

namespace fldc::test {

namespace {

std::string describe(const clsFile& image)
{
    std::string text = image.Name().toStdString() + " '" + image.TagName().toStdString() + "' " +
                       std::to_string(image.intNumberOfBits()) + ' ' +
                       image.strFileType().toStdString() + '/' +
                       image.strFileTerminator().toStdString();
    for (std::int32_t i = 0; i < image.CountTargets(); ++i)
        text +=
            " <" + image.Hardware(i).toStdString() + ':' + std::to_string(image.DeviceID(i)) + '>';
    const auto tables = image.Definitiontables();
    for (std::int32_t i = 0; i < tables->Count(); ++i) {
        const DataDefinition table = tables->Item(i);
        text += ' ' + table.Address.toStdString() + '+' + std::to_string(table.Length) + '(' +
                std::to_string(table.Datablocks->Count()) +
                ")=" + table.Datablocks->data().toHex().toUpper().toStdString();
    }
    return text;
}

} // namespace

Outcome readFirmware(const QByteArray& text, Compression compression, const QStringList& boxes)
{
    const QString path = QStringLiteral("f");
    VirtualPlatform machine;
    machine.files.files[path].content = text;
    for (const QString& box : boxes)
        machine.messages.expectBox(box);

    Outcome outcome;
    lastError().set(Code::NoResponse); // left over from something else
    outcome.problem = SRecordReader(machine.files, outcome.images, compression).read(path);
    outcome.lastError = lastError().number();
    return outcome;
}

QByteArray joined(const std::vector<std::string>& lines, const char* lineEnd)
{
    QByteArray text;
    for (const std::string& line : lines)
        text += QByteArray::fromStdString(line) + lineEnd;
    return text;
}

std::string describe(const colFiles& images)
{
    std::string text;
    for (const auto& image : images.items())
        text += describe(*image) + '\n';
    return text;
}

} // namespace fldc::test
