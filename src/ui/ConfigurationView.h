#pragma once

#include "ui/logic/ConfigurationList.h"

#include <QTreeWidget>

#include <vector>

namespace fldc {

/// Shows the configuration list: one row per configuration, an empty or ticked box on those that
/// can be erased. A click or the space bar on a row asks for its mark to change.
///
/// Columns have the widths of the list's rule until the user changes one; the user's widths stay
/// until the list is filled again.
class ConfigurationView final : public QTreeWidget {
    Q_OBJECT

public:
    /// @p list must outlive the view or be let go with detach().
    ConfigurationView(const ConfigurationList& list, QWidget* parent);

    /// Shows the rows anew.
    void refill();
    /// Gives rows and columns the sizes that font, pictures and window ask for.
    void layOut();
    /// Shows the marks anew.
    void showMarks();
    void detach() { m_list = nullptr; }

Q_SIGNALS:
    /// The user asks for the mark of the row @p row (from 0) to change.
    void rowToggled(int row);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void applyWidths();
    void applyColours();
    void showCheckState(int row, Qt::CheckState state);
    [[nodiscard]] std::vector<int> ruleWidths() const;
    void rememberWidths();
    void toggle(QTreeWidgetItem* item);

    const ConfigurationList* m_list;
    bool m_userWidths = false; ///< the user has changed one
    bool m_applying = false;
};

} // namespace fldc
