#include "certificate/Verdict.h"
#include "firmware/colFiles.h"
#include "fldc/certificate/CertificateKeeper.h"
#include "fldc/commands/CommandTable.h"
#include "fldc/commands/Steps.h"
#include "fldc/files/InputFiles.h"
#include "fldc/files/NamedPort.h"
#include "fldc/options/Options.h"
#include "fldc/output/Output.h"
#include "fldc/radio/RadioRun.h"

namespace fldc::cli {

using namespace Qt::StringLiterals;

namespace {

QHash<QString, std::int32_t> filesOfImages(const LoadedFirmware& firmware)
{
    QHash<QString, std::int32_t> numbers;
    std::int32_t number = 0;
    for (const FirmwareFile& file : firmware.files) {
        ++number;
        for (const auto& image : file.images)
            numbers.insert(image->Name(), number);
    }
    return numbers;
}

QString fileList(const Context& context)
{
    QStringList keys;
    for (const InputFile& file : context.files.items())
        keys.append(file.key);
    return keys.join(QChar::Null);
}

} // namespace

Outcome runDownload(Context& context)
{
    LoadedFirmware firmware;
    if (auto ended = loadFirmware(context, Compression::None, firmware))
        return *ended;
    if (auto ended = refuseFpga(context, firmware))
        return *ended;
    if (auto ended = keepCertificate(context, firmware.files))
        return *ended;

    RadioRun run(context, context.port.device, filesOfImages(firmware));
    if (auto ended = run.openLog())
        return *ended;
    clsDLManager& manager = run.manager();
    manager.setCompression(compressionOf(context));
    if (context.options.speed != "auto")
        manager.chooseSpeed(std::stoi(context.options.speed));
    manager.setAccessLevel(context.options.specialLogOn ? UNLIMITED_ACCESS : DEFAULT_ACCESS);
    manager.LoadFilesByPath(fileList(context), QString(QChar::Null));
    QString unused;
    (void)manager.DownLoad(unused);
    return verdictOfDownload(run.record(), firmware.images->items());
}

} // namespace fldc::cli
