#pragma once

#include <QComboBox>

namespace fldc {

/// A box whose text can be chosen or typed; typed text is no chosen entry, also when it equals one.
///
/// A key with Alt is never text (it may be meant for a button that is disabled at the moment), and
/// the wheel changes nothing while the box has not the focus.
class ChoiceBox final : public QComboBox {
    Q_OBJECT

public:
    explicit ChoiceBox(QWidget* parent);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
};

} // namespace fldc
