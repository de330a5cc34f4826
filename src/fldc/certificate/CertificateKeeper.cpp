#include "fldc/certificate/CertificateKeeper.h"

#include "fldc/certificate/Certificate.h"
#include "fldc/certificate/CertificateFolder.h"
#include "fldc/commands/Command.h"
#include "fldc/commands/Steps.h"
#include "fldc/files/NamedPort.h"
#include "fldc/history/HistoryKeeper.h"
#include "fldc/options/Options.h"
#include "fldc/output/Output.h"
#include "platform/PlatformFailure.h"
#include "platform/linux/DeviceFacts.h"

#include <QJsonDocument>

namespace fldc::cli {

using namespace Qt::StringLiterals;

namespace {

// What is known of the adapter behind the port without opening it; null for no device.
QJsonValue adapterOf(const QString& device)
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

// Null without --certificate.
std::optional<Outcome> openFolder(const Options& options,
                                  std::shared_ptr<CertificateFolder>& folder)
{
    if (!options.certificate)
        return std::nullopt;
    try {
        folder = std::make_shared<CertificateFolder>(*options.certificate);
    } catch (const PlatformFailure& failed) {
        return failure(Exit::File, Code::Success,
                       u"The certificate's folder can't be written to: "_s + failed.description(),
                       u"Name another folder, or ask for the right to write into this one."_s);
    }
    return std::nullopt;
}

} // namespace

std::optional<Outcome> keepCertificate(Context& context, const std::vector<FirmwareFile>& files)
{
    const Options& options = context.options;
    std::shared_ptr<CertificateFolder> folder;
    ChosenStore store;
    if (auto ended = openFolder(options, folder))
        return ended;
    if (auto ended = chooseStore(context, store))
        return ended;
    const Recorder record = recorderOf(context, store);
    if (!folder && !record)
        return std::nullopt;

    const QString unit = QString::fromStdString(options.unit);
    const QString port = context.port.name;
    const auto certificate = std::make_shared<Certificate>(
        CertificateFacts{unit, QString::fromStdString(options.job), utcNow(), context.started,
                         adapterOf(context.started["device"_L1].toString())},
        files);
    context.output.setHearer([certificate](const ObjectKind& kind, const QJsonObject& object) {
        certificate->hear(kind, object);
    });
    context.beforeResult = [=](const QJsonObject& result) {
        if (!concernsARadio(result))
            return;
        const QJsonObject whole = certificate->toJson(result);
        if (record)
            record(whole);
        if (folder)
            (void)folder->write(QJsonDocument(whole).toJson(), QDateTime::currentDateTimeUtc(),
                                unit.isEmpty() ? port : unit);
    };
    return std::nullopt;
}

} // namespace fldc::cli
