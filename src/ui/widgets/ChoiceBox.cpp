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
    lineEdit()->installEventFilter(this);
}

bool ChoiceBox::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == lineEdit() && event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->modifiers().testFlag(Qt::AltModifier) && !key->text().isEmpty()) {
            event->accept(); // or the box would hand it back to the text
            return true;
        }
    }
    return QComboBox::eventFilter(watched, event);
}

void ChoiceBox::wheelEvent(QWheelEvent* event)
{
    if (hasFocus() || lineEdit()->hasFocus())
        QComboBox::wheelEvent(event);
    else
        event->ignore();
}

} // namespace fldc
