#include "firmware/SRecordReader.h"

#include "firmware/TextLines.h"
#include "platform/IFileService.h"
#include "platform/PlatformFailure.h"
#include "shared/LastError.h"
#include "shared/NumberText.h"

#include <algorithm>
#include <array>
#include <span>
#include <utility>

namespace fldc {

using namespace Qt::StringLiterals;

QString NotValid::text() const
{
    return line == 0 ? reason : u"line %1: "_s.arg(line) + reason;
}

struct SRecordReader::LineKind {
    QByteArrayView start;
    bool (SRecordReader::*read)(TextLines& lines) = nullptr;
};

SRecordReader::SRecordReader(IFileService& files, std::shared_ptr<colFiles> images,
                             Compression compression, Pace pace)
    : m_files(files), m_images(std::move(images)), m_compression(compression),
      m_pace(std::move(pace))
{
}

std::optional<NotValid> SRecordReader::read(const QString& path)
{
    m_path = path;
    m_imageName = path;
    m_image.reset();
    m_read.clear();
    m_completed = false;
    m_header = {};
    m_reason.clear();
    m_hash.reset();

    TextLines lines({});
    bool valid = false;
    try {
        const auto content = m_files.readInPieces(path, [this] { return goesOn(m_pace, 0); });
        if (m_hashes)
            m_hash = {sha256Of(content->bytes(), m_pace),
                      static_cast<qint64>(content->bytes().size())};
        lines = TextLines(content->bytes());
        valid = readLines(lines);
    } catch (const std::exception&) {
        (void)reject(currentFailure().description());
    }
    if (!valid)
        markRejected();
    lastError().set(valid ? Code::Success : Code::FileFormatNotValid);
    return valid ? std::nullopt : std::optional(NotValid{lines.number(), m_reason});
}

// Also the complete images before the bad line: who made the rest of the file can't be trusted with
// its beginning.
void SRecordReader::markRejected()
{
    m_images->setHasRejected();
    for (const auto& image : m_read)
        image->setRejected(true);
}

bool SRecordReader::readLines(TextLines& lines)
{
    static constexpr std::array kinds{
        LineKind{"//", &SRecordReader::ignoreLine}, LineKind{"CI", &SRecordReader::ignoreLine},
        LineKind{"MD", &SRecordReader::readTarget}, LineKind{"DW", &SRecordReader::readWidth},
        LineKind{"S0", &SRecordReader::readHeader}, LineKind{"S1", &SRecordReader::readData},
        LineKind{"S2", &SRecordReader::readData},   LineKind{"S3", &SRecordReader::readData},
    };
    while (lines.next()) {
        const QByteArrayView type = SRecordLine(lines.line()).type();
        if (type.isEmpty())
            continue;
        const auto* kind = std::ranges::find(kinds, type, &LineKind::start);
        if (kind == kinds.end())
            return reject(u"a line that starts with \"%1\""_s.arg(QString::fromLatin1(type)));
        if (!(this->*kind->read)(lines))
            return false;
    }
    return m_completed || reject(u"the file ends before the data of an image"_s);
}

bool SRecordReader::ignoreLine(TextLines& /*lines*/)
{
    return true;
}

bool SRecordReader::readTarget(TextLines& lines)
{
    const QString text = SRecordLine(lines.line()).text();
    const qsizetype comma = text.indexOf(u',');
    if (comma < 0)
        return true;
    const qsizetype open = text.indexOf(u'"', 2);
    const qsizetype close = open < 0 ? -1 : text.indexOf(u'"', open + 1);
    if (close < 0)
        return reject(u"a target line without a hardware text in double quotes"_s);

    m_header.latestHardware = text.sliced(open + 1, close - open - 1);
    if (!m_header.hardwares.isEmpty()) {
        m_header.hardwares += u'|';
        m_header.devices += u'|';
    }
    m_header.hardwares += m_header.latestHardware;
    m_header.devices += text.sliced(comma + 1);
    return true;
}

bool SRecordReader::readWidth(TextLines& lines)
{
    const auto bits = readNumber(SRecordLine(lines.line()).text().sliced(2));
    if (bits != 8 && bits != 16 && bits != 32)
        return reject(u"a data width other than 8, 16 or 32"_s);
    m_header.unitBits = static_cast<std::int16_t>(*bits);
    return true;
}

bool SRecordReader::readHeader(TextLines& lines)
{
    const int firstNumber = m_completed ? 1 : 0;
    m_completed = false;
    const auto image = std::make_shared<clsFile>();
    image->setTagName(SRecordLine(lines.line()).headerText());
    if (m_header.unitBits == 0)
        m_header.unitBits = image->TagName().contains("JWA2"_L1) ? 8 : 16;
    image->setIntNumberOfBits(m_header.unitBits);
    if (!m_header.latestHardware.isEmpty()) {
        if (m_header.hardwares.count(u'|') > m_header.devices.count(u'|'))
            return reject(u"a target line before it whose hardware text holds a bar"_s);
        image->AddTargets(m_header.hardwares, m_header.devices);
    }
    image->setSourcePath(m_path);
    m_imageName = m_images->freeName(m_imageName, firstNumber, m_path);
    m_images->Add(image, m_imageName);
    m_read.push_back(image);
    m_image = image;
    m_header.seen = true;
    return true;
}

bool SRecordReader::readData(TextLines& lines)
{
    const DataRecordType& type = *dataRecordType(SRecordLine(lines.line()).type());
    if (!m_header.seen)
        return reject(u"data before the S0 record of their image"_s);
    const auto image = m_image; // held: the collection may lose it while its data are read
    image->setStrFileType(QString::fromLatin1(type.type));
    image->setStrFileTerminator(QString::fromLatin1(type.terminator));

    SRecordImage data(image, type, m_compression, m_pace);
    if (!data.read(lines))
        return reject(data.reason());
    if (!image->TagName().startsWith("JVA"_L1))
        image->ParseFile();
    m_completed = true;
    m_header = {};
    return true;
}

bool SRecordReader::reject(const QString& reason)
{
    m_reason = reason;
    return false;
}

} // namespace fldc
