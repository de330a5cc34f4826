#include "ui/widgets/ChoiceBox.h"

#include "ui/FittingFont.h"

#include <QAbstractItemView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QStyle>
#include <QWheelEvent>

namespace fldc {

namespace {

constexpr int textMargin = 3; // pixels that a line of text keeps free at either end, and the cursor

} // namespace

// The toolkit would choose the entry that equals the typed text when the box loses the focus, and
// complete what is typed.
ChoiceBox::ChoiceBox(QWidget* parent) : QComboBox(parent)
{
    setEditable(true);
    setInsertPolicy(QComboBox::NoInsert);
    setCompleter(nullptr);
    disconnect(lineEdit(), &QLineEdit::editingFinished, this, nullptr);
    lineEdit()->setAcceptDrops(false);
    setAcceptDrops(false);
    setFocusPolicy(Qt::StrongFocus); // not by the wheel
    lineEdit()->setFocusPolicy(Qt::StrongFocus);
    connect(this, &QComboBox::editTextChanged, this, &ChoiceBox::fitText);
}

void ChoiceBox::setEntries(const QStringList& entries, const QStringList& tips, int chosen)
{
    QStringList present;
    for (int i = 0; i < count(); ++i)
        present.append(itemText(i));
    const bool other = present != entries;
    if (other) {
        const QSignalBlocker quiet(this);
        clear();
        addItems(entries);
    }
    for (int i = 0; i < count(); ++i)
        setItemData(i, tips.at(i), Qt::ToolTipRole);
    setCurrentIndex(chosen);
    if (!other || !view()->isVisible())
        return;
    hidePopup();
    openList();
}

void ChoiceBox::showPopup()
{
    Q_EMIT opening();
    openList();
}

void ChoiceBox::openList()
{
    view()->setMinimumWidth(view()->sizeHintForColumn(0) + 2 * view()->frameWidth() +
                            style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, view()));
    QComboBox::showPopup();
}

// The box has the focus for its line of text, and hands keys on to it past every event filter.
void ChoiceBox::keyPressEvent(QKeyEvent* event)
{
    const bool mayBeText = !event->modifiers().testFlag(Qt::AltModifier) || event->text().isEmpty();
    if (mayBeText)
        QComboBox::keyPressEvent(event);
    else
        event->accept();
}

void ChoiceBox::wheelEvent(QWheelEvent* event)
{
    if (hasFocus() || lineEdit()->hasFocus())
        QComboBox::wheelEvent(event);
    else
        event->ignore();
}

void ChoiceBox::resizeEvent(QResizeEvent* event)
{
    QComboBox::resizeEvent(event);
    fitText();
}

void ChoiceBox::changeEvent(QEvent* event)
{
    QComboBox::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        fitText();
}

void ChoiceBox::fitText()
{
    const int width = lineEdit()->contentsRect().width() - 2 * textMargin;
    lineEdit()->setFont(fittingFont(font(), currentText(), width));
}

} // namespace fldc
