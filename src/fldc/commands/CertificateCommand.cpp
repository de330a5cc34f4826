#include "fldc/commands/CommandTable.h"
#include "fldc/files/InputFiles.h"
#include "fldc/output/Output.h"
#include "shared/HexText.h"

#include <QJsonDocument>

namespace fldc::cli {

using namespace Qt::StringLiterals;

namespace {

QString targetText(const QJsonObject& target)
{
    QString text = u"  "_s + target["tag"_L1].toString();
    if (!target["network"_L1].isNull())
        text += u", network %1, device %2"_s.arg(target["network"_L1].toInt())
                    .arg(target["device"_L1].toInt());
    text += target["locked"_L1].toBool() ? u", written and locked\n"_s : u", not complete\n"_s;
    for (const auto& table : target["tables"_L1].toArray()) {
        const auto address = static_cast<std::uint32_t>(table["address"_L1].toInteger());
        text += u"    "_s + hexNumber(address, 8) +
                u"  %1 bytes, crc32 "_s.arg(table["bytes"_L1].toInteger()) +
                table["crc32"_L1].toString(u"not known"_s) + u'\n';
    }
    return text;
}

QString certificateText(const QJsonObject& certificate)
{
    const auto text = [&](QLatin1StringView key) { return certificate[key].toString(); };
    const QJsonObject result = certificate["result"_L1].toObject();
    QString lines = u"unit     "_s + text("unit"_L1) + u"\njob      "_s + text("job"_L1) +
                    u"\nfrom     "_s + text("start"_L1) + u"\nto       "_s + text("end"_L1) +
                    u"\nby       "_s + text("user"_L1) + u" on "_s + text("host"_L1) +
                    u", fldc "_s + text("version"_L1) + u"\nradio    "_s +
                    certificate["radio"_L1]["identifier"_L1].toString(u"-"_s) + u", "_s +
                    result["radio"_L1].toString() + u"\nfiles\n"_s;
    for (const auto& file : certificate["started"_L1]["files"_L1].toArray())
        lines += u"  "_s + file["path"_L1].toString() + u"\n    sha256 "_s +
                 file["sha256"_L1].toString() + u'\n';
    lines += u"written\n"_s;
    for (const auto& target : certificate["targets"_L1].toArray())
        lines += targetText(target.toObject());
    return lines + u"result   "_s + result["message"_L1].toString() + u'\n';
}

// A download that this certificate does not show as confirmed: its own exit code where that says
// what the radio may be; a run that was cut short from outside counts as incomplete.
Exit exitOf(const QJsonObject& result)
{
    const int code = result["exit"_L1].toInt(-1);
    const bool tells = code >= static_cast<int>(Exit::NothingToDo) &&
                       code <= static_cast<int>(Exit::PartlyMatched);
    return tells ? static_cast<Exit>(code) : Exit::Incomplete;
}

bool isConfirmed(const QJsonObject& result)
{
    const QJsonArray written = result["written"_L1].toArray();
    return result["exit"_L1].toInt(-1) == 0 && result["ok"_L1].toBool() &&
           result["command"_L1].toString() == "download"_L1 && !written.isEmpty() &&
           written == result["confirmed"_L1].toArray();
}

} // namespace

Outcome runCertificate(Context& context)
{
    const InputFile& file = context.files.items().front();
    if (!file.content)
        return failure(Exit::File, file.missing ? Code::FileDoesNotExist : Code::FileFormatNotValid,
                       oneLine(file.path) + u": "_s + file.failure,
                       u"Check the file's name and folder."_s);
    const auto bytes = file.content->bytes();
    const QJsonObject certificate =
        QJsonDocument::fromJson(QByteArray::fromRawData(reinterpret_cast<const char*>(bytes.data()),
                                                        static_cast<qsizetype>(bytes.size())))
            .object();
    if (certificate["type"_L1].toString() != kind::certificate.name ||
        !certificate["result"_L1].isObject())
        return failure(Exit::File, Code::FileFormatNotValid,
                       oneLine(file.path) + u": not a certificate"_s,
                       u"Name a file that `fldc download --certificate` has written."_s);

    context.output.tell(kind::certificate, certificate);
    context.output.print(certificateText(certificate));
    const QJsonObject result = certificate["result"_L1].toObject();
    if (isConfirmed(result))
        return done(u"The download is confirmed."_s);
    return failure(exitOf(result), Code::Success, u"The download is not confirmed."_s,
                   result["advice"_L1].toString(u"Download again."_s));
}

} // namespace fldc::cli
