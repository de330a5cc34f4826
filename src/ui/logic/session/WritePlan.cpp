#include "ui/logic/session/WritePlan.h"

#include "firmware/check/RecordCheck.h"
#include "firmware/clsFile.h"
#include "firmware/colFiles.h"
#include "platform/IFileService.h"
#include "platform/PlatformFailure.h"
#include "radio/HardwareMatch.h"
#include "ui/logic/ConfigurationList.h"

#include <algorithm>
#include <utility>

namespace fldc {

using namespace Qt::StringLiterals;

namespace {

constexpr std::size_t sliceBytes = 256UL * 1024;
constexpr qsizetype faultsShown = 20;

QString fileName(const QString& path)
{
    return path.section(u'/', -1).section(u'\\', -1);
}

// The first characters of a product identifier name the component, those behind its version.
constexpr qsizetype nameLength = 5;

constexpr std::size_t typeColumn = 0;
constexpr std::size_t productColumn = 1;
constexpr std::size_t networkColumn = 4;

// "Radio Application on RVKC4-02, NTID 3"
PlanRow placed(PlanRow row, const ConfigurationRow& hardware, const ConfigurationList& radio)
{
    const QString& network = hardware.texts.at(networkColumn);
    QString type = u"New"_s;
    for (const ConfigurationRow& each : radio.rows()) {
        if (each.texts.at(networkColumn) != network ||
            each.texts.at(productColumn).left(nameLength) != row.newVersion.left(nameLength))
            continue;
        type = each.texts.at(typeColumn);
        row.oldVersion = each.texts.at(productColumn);
        break;
    }
    row.component = type + u" on "_s + hardware.texts.at(productColumn) +
                    (network == u"0" ? QString() : u", NTID "_s + network);
    row.fits = true;
    return row;
}

void addPlaces(std::vector<PlanRow>& plan, const PlanRow& image, const QString& hardware,
               const ConfigurationList& radio)
{
    for (const ConfigurationRow& row : radio.rows()) {
        if (matchesHardware(row.texts.at(productColumn), hardware))
            plan.push_back(placed(image, row, radio));
    }
}

} // namespace

std::vector<PlanRow> planOf(const colFiles& files, const ConfigurationList& radio)
{
    std::vector<PlanRow> plan;
    for (const auto& file : files.items()) {
        PlanRow image{fileName(file->SourcePath()),
                      file->SourcePath(),
                      file->TagName(),
                      {},
                      u"fits nothing in this radio"_s,
                      false};
        const std::size_t before = plan.size();
        for (std::int32_t i = 0; i < file->CountTargets(); ++i)
            addPlaces(plan, image, file->Hardware(i), radio);
        if (file->CountTargets() == 0) {
            image.component = u"names no hardware: the radio decides"_s;
            image.fits = true;
        }
        if (file->Rejected()) {
            plan.resize(before);
            image.component = u"refused: the file is not valid"_s;
            image.fits = false;
        }
        if (plan.size() == before)
            plan.push_back(image);
    }
    return plan;
}

ChecksumScan::ChecksumScan(IFileService& files, QStringList paths)
    : m_files(files), m_paths(std::move(paths))
{
}

ChecksumScan::~ChecksumScan() = default;

void ChecksumScan::openNext()
{
    const QString path = m_paths.takeFirst();
    m_name = fileName(path);
    m_position = 0;
    m_line = 0;
    try {
        m_content = m_files.read(path);
    } catch (const PlatformFailure& failure) {
        m_faults.append(m_name + u": "_s + failure.description());
    }
}

bool ChecksumScan::step()
{
    if (!m_content && m_paths.isEmpty())
        return false;
    if (!m_content) {
        openNext();
        return true;
    }
    const auto rest = m_content->bytes().subspan(m_position);
    // Up to a line's end behind the slice.
    const auto from = rest.begin() + static_cast<std::ptrdiff_t>(std::min(sliceBytes, rest.size()));
    const auto end = std::find(from, rest.end(), '\n');
    const auto size = static_cast<std::size_t>(end - rest.begin()) + (end == rest.end() ? 0 : 1);
    const auto slice = rest.first(size);
    for (const RecordFault& fault : checkRecords(slice)) {
        // Of other records nothing but their checksum is looked at.
        if (fault.kind != RecordFault::Kind::Checksum && !fault.isData)
            continue;
        if (m_faults.size() >= faultsShown)
            ++m_more;
        else
            m_faults.append(
                u"%1, line %2: %3"_s.arg(m_name).arg(m_line + fault.line).arg(fault.reason()));
    }
    m_line += std::ranges::count(slice, '\n');
    m_position += size;
    if (m_position >= m_content->bytes().size())
        m_content.reset();
    return true;
}

QStringList ChecksumScan::faults() const
{
    return m_more == 0 ? m_faults : m_faults + QStringList(u"and %1 more"_s.arg(m_more));
}

} // namespace fldc
