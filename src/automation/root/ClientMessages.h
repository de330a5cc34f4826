#pragma once

#include "platform/IMessageBox.h"

#include <functional>

namespace fldc {

/// What clients of the bus cause is shown in a box only where a user is: the notices of a call go
/// to the standard error output otherwise, because nobody would close the box. Questions are asked
/// as ever.
class ClientMessages final : public IMessageBox {
public:
    /// @p box must outlive the object. @p userWaits: whether a user is to see what happens now.
    ClientMessages(IMessageBox& box, std::function<bool()> userWaits)
        : m_box(box), m_userWaits(std::move(userWaits))
    {
    }

    void show(const QString& text, MessageKind kind) override;
    [[nodiscard]] bool askYesNo(const QString& text) override { return m_box.askYesNo(text); }
    void dismiss() override { m_box.dismiss(); }

private:
    IMessageBox& m_box;
    std::function<bool()> m_userWaits;
};

} // namespace fldc
