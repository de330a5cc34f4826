#pragma once

#include <QString>

#include <memory>

namespace fldc {

/// The dialog that asks the user to power-cycle the radio and lets them give up.
///
/// The conversation that shows it owns it and asks IsCancelled() after each of its waits for the
/// radio, of about two seconds; pressing Cancel therefore need not wake anybody. It is never
/// shown without a screen: nobody could cancel it.
class IWaitDialog {
public:
    virtual ~IWaitDialog() = default;

    virtual void SetMessage(const QString& strMessage) = 0;
    /// Shows the dialog without blocking; clears the cancelled flag.
    virtual void Show() = 0;
    virtual void Hide() = 0;
    /// True once the user has pressed Cancel; stays readable after the dialog has closed.
    [[nodiscard]] virtual bool IsCancelled() const = 0;
};

/// Makes the wait dialog when a user is present.
class IWaitDialogFactory {
public:
    virtual ~IWaitDialogFactory() = default;
    [[nodiscard]] virtual std::unique_ptr<IWaitDialog> createWaitDialog() = 0;
};

} // namespace fldc
