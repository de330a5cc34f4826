#include "fldc/commands/CertificateView.h"
#include "fldc/commands/CommandTable.h"
#include "fldc/files/InputFiles.h"
#include "fldc/output/Output.h"

#include <QJsonDocument>

namespace fldc::cli {

using namespace Qt::StringLiterals;

namespace {

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
