#include "certificate/RunObjects.h"

#include "certificate/JsonObject.h"
#include "platform/linux/DeviceFacts.h"

namespace fldc {

using namespace Qt::StringLiterals;

namespace {

QJsonValue textOrNull(const QString& text)
{
    return text.isEmpty() ? QJsonValue() : QJsonValue(validText(text));
}

} // namespace

QJsonObject namedFileObject(const NamedFile& file)
{
    const bool known = file.bytes && !file.sha256.isEmpty();
    return makeObject(
        kind::startedFile,
        {{"path"_L1, file.path},
         {"sha256"_L1, known ? QJsonValue(QString::fromLatin1(file.sha256.toHex())) : QJsonValue()},
         {"bytes"_L1, known ? QJsonValue(*file.bytes) : QJsonValue()}});
}

QJsonObject startedObject(const RunStart& start)
{
    const ProgramVersion& version = start.version;
    return makeObject(
        kind::started,
        {{"schema"_L1, schema},
         {"command"_L1, start.command},
         {"port"_L1, textOrNull(start.port)},
         {"device"_L1, textOrNull(start.device)},
         {"files"_L1, start.files},
         {"version"_L1,
          u"%1.%2.%3"_s.arg(version.major).arg(version.minor).arg(version.revision)}});
}

QJsonObject resultObject(const QString& command, const Outcome& outcome, double seconds)
{
    const QString advice = outcome.advice.isEmpty() ? u"Nothing is left to do."_s : outcome.advice;
    QJsonObject object = makeObject(kind::result, {{"command"_L1, command},
                                                   {"ok"_L1, outcome.ok()},
                                                   {"exit"_L1, static_cast<int>(outcome.exit)},
                                                   {"code"_L1, static_cast<int>(outcome.code)},
                                                   {"message"_L1, outcome.message},
                                                   {"advice"_L1, advice},
                                                   {"radio"_L1, outcome.radio},
                                                   {"seconds"_L1, seconds}});
    if (const auto& download = outcome.download)
        object = extended(object, kind::result,
                          {{"written"_L1, jsonTexts(download->written)},
                           {"not_matched"_L1, jsonTexts(download->notMatched)},
                           {"confirmed"_L1, jsonTexts(download->confirmed)},
                           {"baud"_L1, download->baud},
                           {"retries"_L1, download->retries},
                           {"wire_bytes"_L1, qint64{download->wireBytes}}});
    if (const auto& best = outcome.best)
        object =
            extended(object, kind::result,
                     {{"best"_L1, *best ? QJsonValue(static_cast<qint64>(**best)) : QJsonValue()}});
    return object;
}

double secondsBetween(std::chrono::steady_clock::time_point begin,
                      std::chrono::steady_clock::time_point end)
{
    const auto passed = std::chrono::duration_cast<std::chrono::milliseconds>(end - begin);
    return static_cast<double>(passed.count()) / 1000;
}

QJsonValue adapterObject(const QString& device)
{
    if (device.isEmpty())
        return {};
    const DeviceFacts facts = DeviceInspector(LinuxSystem::thisMachine()).facts(device);
    return makeObject(kind::certificateAdapter, {{"device"_L1, facts.device},
                                                 {"stable"_L1, facts.stableNames.value(0)},
                                                 {"description"_L1, facts.hardware.description},
                                                 {"vendor"_L1, facts.hardware.vendor},
                                                 {"product"_L1, facts.hardware.product},
                                                 {"serial"_L1, facts.hardware.serial}});
}

bool concernsARadio(const QJsonObject& result)
{
    const auto code = static_cast<Exit>(result["exit"_L1].toInt());
    return code != Exit::Usage && code != Exit::File;
}

} // namespace fldc
