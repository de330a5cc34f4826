#include "certificate/Verdict.h"
#include "firmware/colFiles.h"
#include "fldc/commands/CommandTable.h"
#include "fldc/commands/Steps.h"
#include "fldc/files/ImageView.h"
#include "fldc/files/NamedPort.h"
#include "fldc/files/WireUse.h"
#include "fldc/options/Options.h"
#include "fldc/output/Output.h"
#include "fldc/radio/RadioRun.h"
#include "protocol/wire/LineSpeeds.h"
#include "radio/HardwareMatch.h"
#include "shared/NumberText.h"

#include <algorithm>
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
    QString text =
        u"On the line, data and answers, for a radio that takes compressed data (erasing is not "
        "counted):\n"_s;
    for (const std::uint32_t baud : lineSpeeds)
        text += u"  %1 baud  %2 s\n"_s.arg(baud, 6).arg(total.seconds(baud), 9, 'f', 1);
    return text;
}

/// Where in the radio images would be written.
struct Matches {
    QJsonArray objects;
    QStringList notMatched;
};

// As a download finds them: by the first five characters of what the radio reports.
std::int64_t matchImage(const clsFile& image, const std::vector<session::Component>& radio,
                        Matches& matches)
{
    if (image.CountTargets() == 0)
        return 1; // whether it is taken, only the download shows
    std::int64_t places = 0;
    for (std::int32_t i = 0; i < image.CountTargets(); ++i) {
        for (const session::Component& each : radio) {
            if (!matchesHardware(each.product, image.Hardware(i)))
                continue;
            ++places;
            matches.objects.append(
                makeObject(kind::planMatch, {{"tag"_L1, validText(image.TagName())},
                                             {"product"_L1, validText(each.product)},
                                             {"network"_L1, each.network},
                                             {"device"_L1, image.DeviceID(i)}}));
        }
    }
    if (places == 0)
        matches.notMatched.append(validText(image.TagName()));
    return places;
}

/// The components of the radio at the port that was named; nothing, and the outcome, when they
/// can't be read.
std::optional<std::vector<session::Component>> readRadio(Context& context, Outcome& outcome)
{
    RadioRun run(context, context.port.device);
    if (auto ended = run.openLog()) {
        outcome = *ended;
        return std::nullopt;
    }
    QString unused;
    (void)run.manager().ReportConfigurations(unused);
    outcome = verdictOfReport(run.record());
    return outcome.ok() ? run.record().components(session::Reading::Report) : std::nullopt;
}

} // namespace

Outcome runPlan(Context& context)
{
    LoadedFirmware firmware;
    if (auto ended = loadFirmware(context, compressionOf(context), firmware))
        return *ended;
    Outcome outcome;
    const bool asksRadio = !context.port.device.isEmpty();
    const auto radio = asksRadio ? readRadio(context, outcome) : std::nullopt;
    if (asksRadio && !radio)
        return outcome;

    QJsonArray images;
    Matches matches;
    WireUse total;
    std::int64_t places = 0;
    for (const auto& image : firmware.images->items()) {
        const WireUse use = wireUseOf(*image);
        const std::int64_t here = radio ? matchImage(*image, *radio, matches) : 1;
        for (std::int64_t i = 0; i < here; ++i)
            total += use;
        places += here;
        images.append(planImage(*image, isFirstOfItsFile(firmware, image), use));
        context.output.print(
            imageTitle(*image) +
            u"\n  %1, %2 on the line"_s.arg(counted(use.frames, u"frame"),
                                            counted(use.dataBytes, u"data byte")) +
            (radio ? u", %1 in this radio\n"_s.arg(counted(here, u"place")) : u"\n"_s));
    }
    QJsonObject plan =
        makeObject(kind::plan, {{"images"_L1, images}, {"seconds"_L1, secondsBySpeed(total)}});
    if (radio)
        plan = extended(
            plan, kind::plan,
            {{"matches"_L1, matches.objects}, {"not_matched"_L1, jsonTexts(matches.notMatched)}});
    context.output.tell(kind::plan, plan);
    context.output.print(speedsText(total));
    if (radio && places == 0) {
        outcome.exit = Exit::NothingToDo;
        outcome.message = u"No component of the radio matches a file."_s;
        return outcome;
    }
    outcome.message =
        radio ? u"%1 would be written into %2; erasing is not counted."_s.arg(
                    counted(std::ssize(images), u"image"), counted(places, u"place"))
              : counted(std::ssize(images), u"image") +
                    u" would be written, once for each component that matches; erasing is not "
                    "counted."_s;
    return outcome;
}

} // namespace fldc::cli
