#pragma once

#include "platform/IMessageBox.h"

#include <functional>

namespace fldc {

/// True when the application's windows appear on a display (and not on the offscreen platform).
[[nodiscard]] bool displayPresent();
/// True when standard input, output or error is a terminal.
[[nodiscard]] bool terminalAttached();

/// Shows each message where the user is: as a window when there is a display and either the main
/// window is visible or no terminal is attached; else on the terminal.
class MessageChooser final : public IMessageBox {
public:
    /// What the choice depends on; asked anew for each message.
    struct Surroundings {
        std::function<bool()> windowVisible;
        std::function<bool()> displayPresent = fldc::displayPresent;
        std::function<bool()> terminalAttached = fldc::terminalAttached;
        /// True when who asked for the message is gone: it then waits for nobody, and a question
        /// is answered No. May be empty.
        std::function<bool()> nobodyWaits = {};
    };

    MessageChooser(IMessageBox& desktop, IMessageBox& terminal, Surroundings surroundings);

    void show(const QString& text, MessageKind kind) override;
    [[nodiscard]] bool askYesNo(const QString& text) override;
    void dismiss() override;

private:
    [[nodiscard]] IMessageBox& chosen() const;
    [[nodiscard]] bool nobodyWaits() const;

    IMessageBox& m_desktop;
    IMessageBox& m_terminal;
    Surroundings m_surroundings;
};

} // namespace fldc
