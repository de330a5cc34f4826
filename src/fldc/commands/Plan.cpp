#include "firmware/colFiles.h"
#include "fldc/commands/CommandTable.h"
#include "fldc/commands/Steps.h"
#include "fldc/files/ImageView.h"
#include "fldc/files/WireUse.h"
#include "fldc/options/Options.h"
#include "fldc/output/Output.h"
#include "protocol/wire/LineSpeeds.h"

#include <cmath>

namespace fldc::cli {

using namespace Qt::StringLiterals;

namespace {

QJsonObject planImage(const clsFile& image, bool isFirst, const WireUse& use)
{
    const ImageParts parts = imageParts(image, isFirst);
    return makeObject(kind::planImage, {{"tag"_L1, parts.tag},
                                        {"unit_bits"_L1, parts.unitBits},
                                        {"boot_application"_L1, parts.bootApplication},
                                        {"targets"_L1, parts.targets},
                                        {"tables"_L1, parts.tables},
                                        {"frames"_L1, qint64{use.frames}},
                                        {"wire_bytes"_L1, qint64{use.dataBytes}}});
}

bool isFirstOfItsFile(const LoadedFirmware& firmware, const std::shared_ptr<clsFile>& image)
{
    return std::ranges::any_of(firmware.files, [&](const FirmwareFile& file) {
        return !file.images.empty() && file.images.front() == image;
    });
}

QJsonObject secondsBySpeed(const WireUse& total)
{
    QJsonObject seconds;
    for (const std::uint32_t baud : lineSpeeds)
        seconds.insert(QString::number(baud), std::round(total.seconds(baud) * 1000) / 1000);
    return seconds;
}

QString speedsText(const WireUse& total)
{
    QString text = u"On the line, data and answers (erasing is not counted):\n"_s;
    for (const std::uint32_t baud : lineSpeeds)
        text += u"  %1 baud  %2 s\n"_s.arg(baud, 6).arg(total.seconds(baud), 9, 'f', 1);
    return text;
}

} // namespace

Outcome runPlan(Context& context)
{
    if (context.options.port)
        return runNotBuilt(context);
    LoadedFirmware firmware;
    if (auto ended = loadFirmware(context, firmware))
        return *ended;

    QJsonArray images;
    WireUse total;
    for (const auto& image : firmware.images->items()) {
        const WireUse use = wireUseOf(*image);
        total += use;
        images.append(planImage(*image, isFirstOfItsFile(firmware, image), use));
        context.output.print(
            imageTitle(*image) +
            u"\n  %1 frames, %2 data bytes on the line\n"_s.arg(use.frames).arg(use.dataBytes));
    }
    context.output.tell(
        kind::plan,
        makeObject(kind::plan, {{"images"_L1, images}, {"seconds"_L1, secondsBySpeed(total)}}));
    context.output.print(speedsText(total));
    return done(
        (images.size() == 1 ? u"1 image"_s : u"%1 images"_s.arg(images.size())) +
        u" would be written, once for each component that matches; erasing is not counted."_s);
}

} // namespace fldc::cli
