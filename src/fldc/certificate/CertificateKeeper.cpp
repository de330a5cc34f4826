#include "fldc/certificate/CertificateKeeper.h"

#include "certificate/Certificate.h"
#include "certificate/RunObjects.h"
#include "fldc/certificate/CertificateFolder.h"
#include "fldc/commands/Command.h"
#include "fldc/commands/Steps.h"
#include "fldc/files/NamedPort.h"
#include "fldc/history/HistoryKeeper.h"
#include "fldc/options/Options.h"
#include "fldc/output/Output.h"
#include "platform/PlatformFailure.h"

#include <QJsonDocument>

namespace fldc::cli {

using namespace Qt::StringLiterals;

namespace {

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
    history::ChosenStore store;
    if (auto ended = openFolder(options, folder))
        return ended;
    if (auto ended = chooseStore(context, store))
        return ended;
    const Recorder record = recorderOf(context, store);
    if (!folder && !record)
        return std::nullopt;

    std::vector<FileImage> images;
    for (std::size_t i = 0; i < files.size(); ++i) {
        for (const auto& image : files[i].images)
            images.push_back({static_cast<std::int32_t>(i) + 1, image});
    }
    const QString unit = QString::fromStdString(options.unit);
    const QString port = context.port.name;
    const auto certificate = std::make_shared<Certificate>(
        CertificateFacts{unit, QString::fromStdString(options.job), utcNow(), context.started,
                         adapterObject(context.started["device"_L1].toString())},
        std::move(images));
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
