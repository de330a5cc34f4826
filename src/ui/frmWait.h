#pragma once

#include "protocol/IWaitDialog.h"

#include <QDialog>

class QLabel;

namespace fldc {

/// Asks the user to power-cycle the radio. Not modal; "Cancel", Escape and the close box give up.
class frmWait final : public QDialog, public IWaitDialog {
    Q_OBJECT

public:
    /// @p title: caption, the application's title.
    explicit frmWait(const QString& title);

    void SetMessage(const QString& strMessage) override;
    void Show() override;
    void Hide() override { hide(); }
    [[nodiscard]] bool IsCancelled() const override { return m_cancelled; }

    void reject() override;

private:
    QString m_title;
    QLabel* lblMessage;
    bool m_cancelled = false;
};

/// Makes the wait dialogs of a program with windows.
class WaitDialogFactory final : public IWaitDialogFactory {
public:
    explicit WaitDialogFactory(QString title);
    [[nodiscard]] std::unique_ptr<IWaitDialog> createWaitDialog() override;

private:
    QString m_title;
};

} // namespace fldc
