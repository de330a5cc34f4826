#include "fldc/commands/Steps.h"

#include "app/services/SettingsStore.h"
#include "firmware/colFiles.h"
#include "fldc/commands/Command.h"
#include "fldc/files/InputFiles.h"
#include "fldc/options/Options.h"
#include "manager/FileOrder.h"
#include "platform/Platform.h"

#include <algorithm>

namespace fldc::cli {

using namespace Qt::StringLiterals;

Compression compressionOf(const Context& context)
{
    const auto& asked = context.options.compression;
    const bool best =
        asked ? *asked == "best"
              : ReadSetting(context.platform.settings, compressionSetting, {}) == settingBest;
    return best ? Compression::Best : Compression::Zlib;
}

std::optional<Outcome> loadFirmware(Context& context, Compression compression,
                                    LoadedFirmware& firmware)
{
    firmware.images = std::make_shared<colFiles>();
    for (const InputFile& input : context.files.items()) {
        if (context.wantsEnd())
            return done({});
        firmware.files.push_back(readFirmware(input, context.files, firmware.images, compression));
    }
    if (!std::ranges::all_of(firmware.files, &FirmwareFile::valid))
        return notValid(firmware.files);
    OrderFilesForDownload(*firmware.images);
    return std::nullopt;
}

Outcome notValid(const std::vector<FirmwareFile>& files)
{
    const auto bad = std::ranges::find(files, false, &FirmwareFile::valid);
    const auto count = std::ranges::count(files, false, &FirmwareFile::valid);
    const QString others = count > 1 ? u" (%1 more files are not valid)"_s.arg(count - 1) : u""_s;
    return failure(Exit::File, bad->code, bad->firstFault() + others,
                   bad->code == Code::FileDoesNotExist
                       ? u"Check the file's name and folder."_s
                       : u"Get the file anew from where it came from."_s);
}

std::optional<Outcome> refuseFpga(const Context& context, const LoadedFirmware& firmware)
{
    const auto isFpga = [](const auto& image) { return image->isFpgaImage(); };
    if (context.options.allowFpga || std::ranges::none_of(firmware.images->items(), isFpga))
        return std::nullopt;
    return usageError(u"A file holds an FPGA image, which may damage the radio."_s,
                      u"Read the release notes; then allow it with --allow-fpga."_s);
}

} // namespace fldc::cli
