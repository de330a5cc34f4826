#include "fldc/files/FirmwareFile.h"

#include "firmware/SRecordReader.h"
#include "firmware/TextLines.h"
#include "firmware/check/RecordCheck.h"
#include "fldc/files/InputFiles.h"
#include "fldc/output/Messages.h"
#include "fldc/output/Terminal.h"
#include "platform/ShowError.h"

#include <algorithm>

namespace fldc::cli {

using namespace Qt::StringLiterals;

namespace {

FileError errorOf(const RecordFault& fault)
{
    FileError error{fault.line, fault.reason(), std::nullopt};
    if (fault.kind == RecordFault::Kind::Checksum)
        error.checksum = {fault.expected, fault.found};
    return error;
}

bool makesNotValid(const FileError& error)
{
    return !error.checksum;
}

// Why the component's reader does not take the file. It does take one with fields that it can't
// read, and shows a box for each; these are put into @p boxes.
std::optional<FileError> readingError(const InputFile& input, InputFiles& files,
                                      const std::shared_ptr<colFiles>& images,
                                      Compression compression, CountedMessages& boxes)
{
    const ErrorBoxScope scope(boxes);
    const auto notValid = SRecordReader(files, images, compression).read(input.key);
    if (!notValid)
        return std::nullopt;
    return FileError{notValid->line, notValid->reason, std::nullopt};
}

void addRecordErrors(std::vector<FileError>& errors, const InputFile& input)
{
    const qint64 known = errors.empty() ? 0 : errors.front().line;
    TextLines lines(input.content->bytes());
    for (const RecordFault& fault : checkRecords(lines)) {
        // Of other records than data nothing is used but the header's text, which the reader
        // judges; and it has said more of the line at which it stopped.
        if (fault.kind == RecordFault::Kind::Checksum || (fault.isData && fault.line != known))
            errors.push_back(errorOf(fault));
    }
    std::ranges::stable_sort(errors, {}, &FileError::line);
}

} // namespace

QString FirmwareFile::firstFault() const
{
    const auto error = std::ranges::find_if(errors, makesNotValid);
    if (error == errors.end())
        return {};
    const QString line = error->line == 0 ? QString() : u", line %1"_s.arg(error->line);
    return oneLine(input->path) + line + u": "_s + error->reason;
}

FirmwareFile readFirmware(const InputFile& input, InputFiles& files,
                          const std::shared_ptr<colFiles>& images, Compression compression)
{
    FirmwareFile file;
    file.input = &input;
    if (!input.content) {
        file.errors.push_back({0, input.failure, std::nullopt});
        file.code = input.missing ? Code::FileDoesNotExist : Code::FileFormatNotValid;
        return file;
    }
    CountedMessages boxes;
    if (const auto error = readingError(input, files, images, compression, boxes))
        file.errors.push_back(*error);
    addRecordErrors(file.errors, input);
    file.valid = std::ranges::none_of(file.errors, makesNotValid);
    if (file.valid && boxes.count() > 0) {
        file.errors.push_back({0, u"a field can't be read: "_s + boxes.first(), std::nullopt});
        file.valid = false;
    }
    if (!file.valid) {
        file.code = Code::FileFormatNotValid;
        return file;
    }
    for (const auto& image : images->items()) {
        if (image->SourcePath() == input.key && !image->Rejected())
            file.images.push_back(image);
    }
    return file;
}

} // namespace fldc::cli
