#pragma once

#include <QDialog>

namespace fldc {

/// A text that can be selected, in a window beside its owner which blocks nothing.
class TextWindow final : public QDialog {
    Q_OBJECT

public:
    TextWindow(const QString& title, const QString& text, QWidget* owner);

Q_SIGNALS:
    void copyWanted();
};

} // namespace fldc
