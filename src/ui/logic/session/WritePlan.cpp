#include "ui/logic/session/WritePlan.h"

#include "firmware/TextLines.h"
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

constexpr qint64 pieceBytes = qint64{256} * 1024;
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

/// Where the last line ends whose end is whole in @p piece; 0 when none does.
qsizetype endOfLines(const QByteArray& piece)
{
    const QByteArrayView sure = QByteArrayView(piece).chopped(piece.endsWith('\r') ? 1 : 0);
    return std::max(sure.lastIndexOf('\n'), sure.lastIndexOf('\r')) + 1;
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
    : m_files(files), m_paths(std::move(paths)), m_piece(pieceBytes)
{
}

bool ChecksumScan::step()
{
    if (m_paths.isEmpty())
        return false;
    const QString path = m_paths.first();
    QByteArray piece;
    try {
        piece = m_files.readPart(path, m_position, m_piece);
    } catch (const PlatformFailure& failure) {
        m_faults.append(fileName(path) + u": "_s + failure.description());
    }
    const bool last = piece.size() < m_piece;
    const qsizetype whole = last ? piece.size() : endOfLines(piece);
    check(fileName(path), QByteArrayView(piece).first(whole));
    m_position += whole;
    m_piece = whole > 0 ? pieceBytes : 2 * m_piece; // a line longer than the piece
    if (last) {
        m_paths.removeFirst();
        m_position = m_line = 0;
        m_piece = pieceBytes;
    }
    return true;
}

void ChecksumScan::check(const QString& name, QByteArrayView lines)
{
    TextLines text({reinterpret_cast<const std::uint8_t*>(lines.data()),
                    static_cast<std::size_t>(lines.size())});
    for (const RecordFault& fault : checkRecords(text)) {
        // Of other records nothing but their checksum is looked at.
        if (fault.kind != RecordFault::Kind::Checksum && !fault.isData)
            continue;
        if (m_faults.size() >= faultsShown)
            ++m_more;
        else
            m_faults.append(
                u"%1, line %2: %3"_s.arg(name).arg(m_line + fault.line).arg(fault.reason()));
    }
    m_line += text.number();
}

QStringList ChecksumScan::faults() const
{
    return m_more == 0 ? m_faults : m_faults + QStringList(u"and %1 more"_s.arg(m_more));
}

} // namespace fldc
