#include "ui/widgets/ChoiceBox.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QWheelEvent>

namespace fldc {

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

} // namespace fldc
