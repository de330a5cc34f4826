#include "firmware/colFiles.h"
#include "fldc/commands/CommandTable.h"
#include "fldc/commands/Steps.h"
#include "fldc/files/ImageView.h"
#include "fldc/files/InputFiles.h"
#include "fldc/output/Output.h"
#include "shared/NumberText.h"

#include <algorithm>

namespace fldc::cli {

using namespace Qt::StringLiterals;

// Tells of each file before the next is read; none but the present one's images are in memory.
Outcome runInspect(Context& context)
{
    std::vector<FirmwareFile> files;
    for (const InputFile& input : context.files.items()) {
        if (context.wantsEnd())
            break;
        FirmwareFile file = readFirmware(input, context.files, std::make_shared<colFiles>(),
                                         compressionOf(context));
        if (context.output.isJson())
            context.output.tell(kind::file, fileObject(file));
        else
            context.output.print(fileText(file));
        file.images.clear();
        files.push_back(std::move(file));
    }
    if (context.wantsEnd())
        return done({});
    if (!std::ranges::all_of(files, &FirmwareFile::valid))
        return notValid(files);
    const auto withChecksums =
        std::ranges::count_if(files, [](const FirmwareFile& file) { return !file.errors.empty(); });
    const QString valid =
        files.size() == 1 ? u"The file is valid"_s : u"All %1 files are valid"_s.arg(files.size());
    if (withChecksums == 0)
        return done(valid + u'.');
    return done(valid + u"; records with wrong checksums stand in %1."_s.arg(
                            counted(withChecksums, u"file")));
}

} // namespace fldc::cli
