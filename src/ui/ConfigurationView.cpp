#include "ui/ConfigurationView.h"

#include "ui/ControlPositions.h"
#include "ui/frmIcon.h"

#include <QAccessible>
#include <QEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPixmap>
#include <QScopedValueRollback>
#include <QStyledItemDelegate>

#include <algorithm>
#include <numeric>

namespace fldc {

namespace {

constexpr int iconPixels = 16;
constexpr int largestIconPixels = 64;
constexpr int rowGap = 4; // between two boxes
constexpr int statusColumn = 2;
constexpr int narrowestColumn = 16;

// Takes the place of a box, so that all texts begin at the same place.
QIcon emptyIcon()
{
    QPixmap empty(largestIconPixels, largestIconPixels);
    empty.fill(Qt::transparent);
    return empty;
}

QIcon markIcon(RowMark mark)
{
    static const QIcon unticked = frmIcon::picture(QStringLiteral("unticked"));
    static const QIcon ticked = frmIcon::picture(QStringLiteral("ticked"));
    static const QIcon noBox = emptyIcon();
    switch (mark) {
    case RowMark::Erasable:
        return unticked;
    case RowMark::Marked:
        return ticked;
    case RowMark::None:
        break;
    }
    return noBox;
}

QString accessibleText(const ConfigurationRow& row)
{
    const QString& type = row.texts.front();
    if (row.mark == RowMark::None)
        return type;
    return type + (row.mark == RowMark::Marked ? ConfigurationView::tr(", marked for erasure")
                                               : ConfigurationView::tr(", not marked"));
}

// Pure red can't be read on a dark background.
QColor faultColour(const QPalette& palette)
{
    const bool dark = palette.color(QPalette::Base).lightness() < 128;
    return dark ? QColor(255, 128, 128) : QColor(255, 0, 0);
}

// An exclamation mark, half as wide as a box: colour alone would not be seen by everybody.
QPixmap faultMark(const QColor& colour)
{
    QPixmap mark(largestIconPixels / 2, largestIconPixels);
    mark.fill(Qt::transparent);
    QPainter painter(&mark);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour);
    painter.drawRoundedRect(QRect(10, 8, 12, 32), 6, 6);
    painter.drawEllipse(QRect(10, 46, 12, 12));
    return mark;
}

QIcon faultIcon(const QColor& colour, const QColor& onHighlight)
{
    QIcon icon(faultMark(colour));
    icon.addPixmap(faultMark(onHighlight), QIcon::Selected);
    return icon;
}

// A box is a picture to the eye and a check state to screen readers.
class BoxDelegate final : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override
    {
        QStyledItemDelegate::initStyleOption(option, index);
        option->features &= ~QStyleOptionViewItem::HasCheckIndicator;
    }
    // The list itself decides what marks a row.
    bool editorEvent(QEvent* /*event*/, QAbstractItemModel* /*model*/,
                     const QStyleOptionViewItem& /*option*/, const QModelIndex& /*index*/) override
    {
        return false;
    }
};

QStringList titles()
{
    const auto& texts = ConfigurationList::columnTitles();
    return {texts.begin(), texts.end()};
}

} // namespace

ConfigurationView::ConfigurationView(const ConfigurationList& list, QWidget* parent)
    : QTreeWidget(parent), m_list(&list)
{
    setColumnCount(static_cast<int>(ConfigurationList::columnCount));
    setHeaderLabels(titles());
    setFrameShape(QFrame::NoFrame);
    setRootIsDecorated(false);
    setItemsExpandable(false);
    setUniformRowHeights(true);
    setAllColumnsShowFocus(true);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setIconSize(QSize(iconPixels, iconPixels));
    setItemDelegate(new BoxDelegate(this));
    header()->setSectionsMovable(false);
    header()->setStretchLastSection(false);
    header()->setMinimumSectionSize(narrowestColumn);
    header()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    // Only columns that the user has widened can be wider than the list.
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);

    connect(this, &QTreeWidget::itemClicked, this, &ConfigurationView::toggle);
    connect(this, &QTreeWidget::itemDoubleClicked, this, &ConfigurationView::toggle);
    connect(header(), &QHeaderView::sectionResized, this, &ConfigurationView::rememberWidths);
}

void ConfigurationView::refill()
{
    clear();
    for (const ConfigurationRow& row : m_list->rows()) {
        auto* item = new QTreeWidgetItem(QStringList(row.texts.begin(), row.texts.end()));
        const QString details =
            m_list->hiddenDetails(static_cast<std::size_t>(topLevelItemCount()));
        for (int column = 0; !details.isEmpty() && column < columnCount(); ++column)
            item->setToolTip(column, details);
        addTopLevelItem(item);
    }
    showMarks();
    applyColours();
    layOut();
}

void ConfigurationView::layOut()
{
    m_userWidths = false;
    const int height = std::max(fontMetrics().height(), iconSize().height()) + rowGap;
    for (int i = 0; i < topLevelItemCount(); ++i)
        topLevelItem(i)->setSizeHint(0, QSize(0, height));
    applyWidths();
}

void ConfigurationView::showMarks()
{
    for (int i = 0; i < topLevelItemCount(); ++i) {
        const ConfigurationRow& row = m_list->rows().at(static_cast<std::size_t>(i));
        topLevelItem(i)->setIcon(0, markIcon(row.mark));
        topLevelItem(i)->setData(0, Qt::AccessibleTextRole, accessibleText(row));
        if (row.mark != RowMark::None)
            showCheckState(i, row.mark == RowMark::Marked ? Qt::Checked : Qt::Unchecked);
    }
}

// Tells screen readers of a change; their children of the list are its cells behind the titles.
void ConfigurationView::showCheckState(int row, Qt::CheckState state)
{
    QTreeWidgetItem* item = topLevelItem(row);
    const bool changed =
        item->data(0, Qt::CheckStateRole).isValid() && item->checkState(0) != state;
    item->setCheckState(0, state);
    if (!changed)
        return;
    QAccessible::State difference;
    difference.checked = true;
    QAccessibleStateChangeEvent event(this, difference);
    event.setChild((row + 1) * columnCount());
    QAccessible::updateAccessibility(&event);
}

void ConfigurationView::applyColours()
{
    const QColor fault = faultColour(palette());
    const QIcon mark = faultIcon(fault, palette().color(QPalette::HighlightedText));
    for (int i = 0; i < topLevelItemCount(); ++i) {
        const ConfigurationRow& row = m_list->rows().at(static_cast<std::size_t>(i));
        topLevelItem(i)->setForeground(statusColumn,
                                       row.statusIsFault ? fault : palette().color(QPalette::Text));
        topLevelItem(i)->setIcon(statusColumn, row.statusIsFault ? mark : QIcon());
    }
}

// The vertical scroll bar of a long list stands over the last column, so its width is taken from
// the widest one.
std::vector<int> ConfigurationView::ruleWidths() const
{
    std::vector<int> widths;
    for (const int twips : m_list->columnWidths(listWidth))
        widths.push_back(widthInPixels(twips, *this));
    const int excess =
        std::accumulate(widths.begin(), widths.end(), 0) - std::max(viewport()->width(), 1);
    const bool placed = viewport()->width() > width() / 2;
    if (excess > 0 && placed)
        *std::ranges::max_element(widths) -= excess;
    return widths;
}

void ConfigurationView::applyWidths()
{
    if (m_list == nullptr || m_userWidths)
        return;
    const QScopedValueRollback applying(m_applying, true);
    const auto& shown = m_list->columnWidths(listWidth);
    const std::vector<int> widths = ruleWidths();
    for (int column = 0; column < columnCount(); ++column) {
        const auto index = static_cast<std::size_t>(column);
        setColumnHidden(column, shown.at(index) == 0);
        if (shown.at(index) != 0)
            setColumnWidth(column, widths.at(index));
    }
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
}

void ConfigurationView::rememberWidths()
{
    if (m_applying || m_list == nullptr)
        return;
    m_userWidths = true;
    setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
}

void ConfigurationView::toggle(QTreeWidgetItem* item)
{
    Q_EMIT rowToggled(indexOfTopLevelItem(item));
}

void ConfigurationView::keyPressEvent(QKeyEvent* event)
{
    if (event->key() != Qt::Key_Space || currentItem() == nullptr)
        return QTreeWidget::keyPressEvent(event);
    if (!event->isAutoRepeat())
        toggle(currentItem());
}

// Only what the left button does marks.
void ConfigurationView::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        QTreeWidget::mouseDoubleClickEvent(event);
}

void ConfigurationView::resizeEvent(QResizeEvent* event)
{
    QTreeWidget::resizeEvent(event);
    applyWidths();
}

void ConfigurationView::changeEvent(QEvent* event)
{
    QTreeWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && m_list != nullptr)
        applyColours();
}

} // namespace fldc
