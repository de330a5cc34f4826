#pragma once

#include "platform/IMessageBox.h"

#include <functional>
#include <utility>

#include <unistd.h>

namespace fldc {

/// Message boxes for a run without a window: information goes to the standard output, errors to the
/// standard error output, each with a line end. A question is asked when somebody can see and
/// answer it: standard input is a terminal that this process may read, and one of the outputs is a
/// terminal. Only "y" and "yes" are Yes. What was typed before the question is thrown away, so that
/// it can't answer it. Events are served while a question waits; a second one is not asked then.
class TerminalMessages final : public IMessageBox {
public:
    explicit TerminalMessages(int input = STDIN_FILENO, int output = STDOUT_FILENO,
                              int error = STDERR_FILENO);

    void show(const QString& text, MessageKind kind) override;
    [[nodiscard]] bool askYesNo(const QString& text) override;
    void dismiss() override { m_dismissed = true; }

    /// @p endLine is called before each text: who else writes to the terminal ends the line there.
    void setEndLine(std::function<void()> endLine) { m_endLine = std::move(endLine); }

private:
    [[nodiscard]] bool somebodyCanAnswer() const;
    [[nodiscard]] QByteArray readLine();
    void startText();

    std::function<void()> m_endLine;
    bool m_asking = false;
    bool m_dismissed = false;
    int m_input;
    int m_output;
    int m_error;
};

} // namespace fldc
