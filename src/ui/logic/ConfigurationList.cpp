#include "ui/logic/ConfigurationList.h"

#include "radio/clsConfiguration.h"
#include "radio/colConfigurations.h"
#include "session/Narrator.h"
#include "shared/DisplayTexts.h"

#include <algorithm>

namespace fldc {

namespace {

// Widths in twips; the last visible column takes what is left.
constexpr int typeWidth = 1800;
constexpr int codeWidth = 2800;
constexpr int statusWidth = 1500;
constexpr int hardwareWidth = 1500;

struct HardwareName {
    QStringView code;
    const char16_t* name;
};

constexpr std::array hardwareNames{
    HardwareName{u"RVKC", u"Head"},
    HardwareName{u"RVKB", u"Torso"},
};

// A component code with "J" first and "1" fourth.
bool isFirstGeneration(const QString& productId)
{
    return productId.left(1) + productId.mid(3, 1) == u"J1";
}

} // namespace

const std::array<QString, ConfigurationList::columnCount>& ConfigurationList::columnTitles()
{
    static const std::array<QString, columnCount> titles{
        displayText(Text::Type), displayText(Text::CodeAndVersion), displayText(Text::StatusColumn),
        displayText(Text::TargetHardware), QStringLiteral("NTID")};
    return titles;
}

void ConfigurationList::fill(const colConfigurations& configurations, bool blnF1KeyRequired)
{
    const auto items = configurations.items();
    const bool firstGeneration = std::ranges::any_of(
        items, [](const auto& each) { return isFirstGeneration(each->ProductID()); });
    m_layout = blnF1KeyRequired  ? Layout::TypeCode
               : firstGeneration ? Layout::TypeCodeStatus
                                 : Layout::AllColumns;
    m_rows.clear();
    for (const auto& each : items) {
        m_rows.push_back(
            {{each->ComponentType(), each->ProductID(), session::StatusText(each->Status()),
              ConvertTargetHW(each->HardwareString()), QString::number(each->NetWorkID())},
             each->Status() != 0,
             each->blnCanBeErased() ? RowMark::Erasable : RowMark::None,
             each->DeviceID()});
    }
}

std::array<int, ConfigurationList::columnCount> ConfigurationList::columnWidths(int listWidth) const
{
    if (m_layout == Layout::TypeCode)
        return {typeWidth, listWidth - typeWidth, 0, 0, 0};
    if (m_layout == Layout::TypeCodeStatus)
        return {typeWidth, codeWidth, listWidth - typeWidth - codeWidth, 0, 0};
    return {typeWidth, codeWidth, statusWidth, hardwareWidth,
            listWidth - typeWidth - codeWidth - statusWidth - hardwareWidth};
}

void ConfigurationList::toggleMark(std::size_t index)
{
    RowMark& mark = m_rows.at(index).mark;
    if (mark == RowMark::Erasable)
        mark = RowMark::Marked;
    else if (mark == RowMark::Marked)
        mark = RowMark::Erasable;
}

bool ConfigurationList::anyMarked() const
{
    return std::ranges::find(m_rows, RowMark::Marked, &ConfigurationRow::mark) != m_rows.end();
}

QStringList ConfigurationList::markedNames() const
{
    QStringList names;
    for (const ConfigurationRow& row : m_rows) {
        if (row.mark == RowMark::Marked)
            names.append(row.texts[0] + u' ' + row.texts[1]);
    }
    return names;
}

QString ConfigurationList::hiddenDetails(std::size_t index) const
{
    if (m_layout == Layout::AllColumns)
        return {};
    const ConfigurationRow& row = m_rows.at(index);
    return QStringLiteral("Target hardware: %1\nNetwork: %2\nDevice: %3")
        .arg(row.texts[3].isEmpty() ? QStringLiteral("none reported") : row.texts[3], row.texts[4])
        .arg(row.device);
}

QString ConfigurationList::eraseList() const
{
    QString list;
    for (std::size_t i = 0; i < m_rows.size(); ++i) {
        if (m_rows[i].mark == RowMark::Marked)
            list += QString::number(i + 1) + u'|';
    }
    return list;
}

QString ConvertTargetHW(const QString& strHardwareId)
{
    const auto* found =
        std::ranges::find(hardwareNames, QStringView(strHardwareId).left(4), &HardwareName::code);
    return found == hardwareNames.end() ? QString() : QString::fromUtf16(found->name);
}

} // namespace fldc
