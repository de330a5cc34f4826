#pragma once

#include <QString>
#include <QStringList>

#include <array>
#include <cstdint>
#include <vector>

namespace fldc {

class colConfigurations;

/// Whether a row of the configuration list can be erased, and whether the user has marked it.
enum class RowMark { None, Erasable, Marked };

struct ConfigurationRow {
    std::array<QString, 5> texts; ///< one per column
    bool statusIsFault = false;   ///< shown in red
    RowMark mark = RowMark::None;
    std::int32_t device = 0; ///< has no column
};

/// The rows of the configuration list, in the order of the radio's configurations: row n (from 1)
/// is the n-th configuration, which the erase list relies on.
class ConfigurationList {
public:
    static constexpr std::size_t columnCount = 5;
    /// Which columns are shown: the first two, three or all.
    enum class Layout { TypeCode, TypeCodeStatus, AllColumns };

    [[nodiscard]] static const std::array<QString, columnCount>& columnTitles();

    /// @p blnF1KeyRequired: the radio shows only its types and codes.
    void fill(const colConfigurations& configurations, bool blnF1KeyRequired);

    [[nodiscard]] const std::vector<ConfigurationRow>& rows() const { return m_rows; }
    [[nodiscard]] Layout layout() const { return m_layout; }
    /// Widths in twips for a list @p listWidth twips wide; 0 hides a column.
    [[nodiscard]] std::array<int, columnCount> columnWidths(int listWidth) const;

    /// Marks or unmarks the row at @p index (from 0); one that can't be erased does not change.
    void toggleMark(std::size_t index);
    [[nodiscard]] bool anyMarked() const;
    /// Type and code of each marked row.
    [[nodiscard]] QStringList markedNames() const;
    /// What the row at @p index (from 0) holds in columns that are hidden, and its device; empty
    /// when all columns are shown.
    [[nodiscard]] QString hiddenDetails(std::size_t index) const;
    /// Positions of the marked rows, from 1, each followed by "|": "2|5|".
    [[nodiscard]] QString eraseList() const;

private:
    std::vector<ConfigurationRow> m_rows;
    Layout m_layout = Layout::AllColumns;
};

/// Display name of a hardware code, by its first four characters; empty for others.
[[nodiscard]] QString ConvertTargetHW(const QString& strHardwareId);

} // namespace fldc
