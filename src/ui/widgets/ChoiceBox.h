#pragma once

#include <QComboBox>

namespace fldc {

/// A box whose text can be chosen or typed; typed text is no chosen entry, also when it equals one.
///
/// A key with Alt is never text (it may be meant for a button that is disabled at the moment), and
/// the wheel changes nothing while the box has not the focus. Text too long for the box is drawn
/// narrower.
class ChoiceBox final : public QComboBox {
    Q_OBJECT

public:
    explicit ChoiceBox(QWidget* parent);

    /// Replaces the entries, also while the list is open. @p tips: one for each entry. @p chosen:
    /// from 0; -1 for none.
    void setEntries(const QStringList& entries, const QStringList& tips, int chosen);
    /// Never narrower than its longest entry.
    void showPopup() override;

Q_SIGNALS:
    /// The list is about to be shown.
    void opening();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void openList();
    void fitText();
};

} // namespace fldc
