#pragma once

#include "platform/IMessageBox.h"

#include <QPointer>

#include <vector>

class QMessageBox;

namespace fldc {

/// Message boxes as windows, modal for the whole application, on top of the active window. The
/// default answer of a question is No.
class DesktopMessages final : public IMessageBox {
public:
    explicit DesktopMessages(QString title);

    void show(const QString& text, MessageKind kind) override;
    [[nodiscard]] bool askYesNo(const QString& text) override;
    void dismiss() override;

private:
    int answer(QMessageBox* box, int otherwise);

    QString m_title;
    std::vector<QPointer<QMessageBox>> m_open;
};

} // namespace fldc
