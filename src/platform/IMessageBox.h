#pragma once

#include <QString>

namespace fldc {

enum class MessageKind { Information, Error };

/// Message boxes with the application's title. Each call returns when the user has answered, and
/// serves events until then.
///
/// The one who asks stands still meanwhile, but timers, bytes and calls are served: an answer may
/// come into another world than the question left. Questions are therefore asked before the first
/// byte goes to a radio; beside a conversation only what returns at once is used (IFileDialogs.h,
/// notices of the window).
class IMessageBox {
public:
    virtual ~IMessageBox() = default;

    /// One OK button.
    virtual void show(const QString& text, MessageKind kind) = 0;
    /// Yes and No buttons; true for Yes. With nobody to ask the answer is No.
    [[nodiscard]] virtual bool askYesNo(const QString& text) = 0;
    /// Closes what is open, as if nobody had answered. May be called from an event that is served
    /// while a box is open. Boxes that wait for nobody have nothing to close.
    virtual void dismiss() {}
};

} // namespace fldc
