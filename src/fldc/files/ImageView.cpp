#include "fldc/files/ImageView.h"

#include "certificate/Certificate.h"
#include "certificate/JsonObject.h"
#include "firmware/clsFile.h"
#include "fldc/files/InputFiles.h"
#include "fldc/output/Terminal.h"
#include "protocol/wire/BootFiles.h"
#include "shared/HexText.h"

#include <algorithm>

namespace fldc::cli {

using namespace Qt::StringLiterals;

namespace {

constexpr std::size_t errorsForPeople = 20;

std::uint32_t unsignedAddress(const DataDefinition& table)
{
    return static_cast<std::uint32_t>(table.Address.toInt());
}

QJsonObject tableObject(const DataDefinition& table)
{
    const colDataBlocks& data = *table.Datablocks;
    const QJsonValue compressed =
        data.CompressedCount() > 0 ? QJsonValue(data.CompressedCount()) : QJsonValue();
    return makeObject(kind::imageTable, {{"address"_L1, qint64{unsignedAddress(table)}},
                                         {"bytes"_L1, data.Count()},
                                         {"compressed_bytes"_L1, compressed},
                                         {"crc32"_L1, crc32Text(data)}});
}

QJsonObject errorObject(const FileError& error)
{
    const QJsonObject object =
        makeObject(kind::fileError, {{"line"_L1, error.line}, {"reason"_L1, error.reason}});
    if (!error.checksum)
        return object;
    return extended(object, kind::fileError,
                    {{"expected"_L1, hexNumber(error.checksum->expected, 2)},
                     {"found"_L1, hexNumber(error.checksum->found, 2)}});
}

QString errorText(const FileError& error)
{
    const QString line = error.line == 0 ? QString() : u"line %1: "_s.arg(error.line);
    if (!error.checksum)
        return line + error.reason;
    return line + error.reason +
           u" (%1, should be %2)"_s.arg(hexNumber(error.checksum->found, 2),
                                        hexNumber(error.checksum->expected, 2));
}

QString tableText(const DataDefinition& table)
{
    const colDataBlocks& data = *table.Datablocks;
    const QString compressed = data.CompressedCount() > 0
                                   ? u"%1 compressed"_s.arg(data.CompressedCount())
                                   : u"not compressed"_s;
    return u"    %1  %2 bytes, %3, crc32 %4\n"_s.arg(hexNumber(unsignedAddress(table), 8))
        .arg(data.Count(), 8)
        .arg(compressed, crc32Text(data));
}

QString imageText(const clsFile& image, bool isBootApplication)
{
    QString text = u"  image "_s + imageTitle(image) +
                   (isBootApplication ? u", a boot application\n"_s : u"\n"_s);
    const auto tables = image.Definitiontables();
    for (std::int32_t i = 0; i < tables->Count(); ++i)
        text += tableText(tables->Item(i));
    return text;
}

QString nameOf(const clsFile& image)
{
    const QString path = image.SourcePath();
    return path.sliced(path.lastIndexOf(u'/') + 1);
}

} // namespace

ImageParts imageParts(const clsFile& image, bool isFirst)
{
    ImageParts parts;
    parts.tag = validText(image.TagName());
    parts.unitBits = image.intNumberOfBits();
    parts.bootApplication = isFirst && isBootFile(nameOf(image));
    for (std::int32_t i = 0; i < image.CountTargets(); ++i)
        parts.targets.append(makeObject(kind::imageTarget, {{"hardware"_L1, image.Hardware(i)},
                                                            {"device"_L1, image.DeviceID(i)}}));
    const auto tables = image.Definitiontables();
    for (std::int32_t i = 0; i < tables->Count(); ++i)
        parts.tables.append(tableObject(tables->Item(i)));
    return parts;
}

QString imageTitle(const clsFile& image)
{
    QStringList targets;
    for (std::int32_t i = 0; i < image.CountTargets(); ++i)
        targets.append(oneLine(image.Hardware(i)) + u" device %1"_s.arg(image.DeviceID(i)));
    return oneLine(image.TagName()) + u", %1-bit units, "_s.arg(image.intNumberOfBits()) +
           (targets.isEmpty() ? u"for any hardware"_s : u"for "_s + targets.join(u", "_s));
}

QJsonObject fileObject(const FirmwareFile& file)
{
    QJsonArray errors;
    for (const FileError& error : file.errors)
        errors.append(errorObject(error));
    QJsonArray images;
    for (const auto& image : file.images) {
        const ImageParts parts = imageParts(*image, image == file.images.front());
        images.append(makeObject(kind::image, {{"tag"_L1, parts.tag},
                                               {"unit_bits"_L1, parts.unitBits},
                                               {"boot_application"_L1, parts.bootApplication},
                                               {"targets"_L1, parts.targets},
                                               {"tables"_L1, parts.tables}}));
    }
    const InputFile& input = *file.input;
    const bool wasRead = input.content != nullptr;
    return makeObject(
        kind::file,
        {{"path"_L1, input.path},
         {"sha256"_L1,
          wasRead ? QJsonValue(QString::fromLatin1(input.sha256.toHex())) : QJsonValue()},
         {"bytes"_L1,
          wasRead ? QJsonValue(static_cast<qint64>(input.content->bytes().size())) : QJsonValue()},
         {"valid"_L1, file.valid},
         {"errors"_L1, errors},
         {"images"_L1, images}});
}

QString fileText(const FirmwareFile& file)
{
    const InputFile& input = *file.input;
    QString text = oneLine(input.path) + (file.valid ? u": valid\n"_s : u": not valid\n"_s);
    if (input.content)
        text += u"  %1 bytes, sha256 %2\n"_s.arg(input.content->bytes().size())
                    .arg(QString::fromLatin1(input.sha256.toHex()));
    const std::size_t shown = std::min(file.errors.size(), errorsForPeople);
    for (std::size_t i = 0; i < shown; ++i)
        text += u"  "_s + errorText(file.errors[i]) + u'\n';
    if (shown < file.errors.size())
        text += u"  and %1 more; --json lists all\n"_s.arg(file.errors.size() - shown);
    for (const auto& image : file.images) {
        const bool isFirst = image == file.images.front();
        text += imageText(*image, isFirst && isBootFile(nameOf(*image)));
    }
    return text;
}

} // namespace fldc::cli
