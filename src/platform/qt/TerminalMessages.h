#pragma once

#include "platform/IMessageBox.h"

#include <unistd.h>

namespace fldc {

/// Message boxes for a run without a window: information goes to the standard output, errors to the
/// standard error output, each with a line end. A question is asked when somebody can see and
/// answer it: standard input is a terminal that this process may read, and one of the outputs is a
/// terminal. Only "y" and "yes" are Yes; a signal during the question is No. What was typed before
/// the question is thrown away, so that it can't answer it.
class TerminalMessages final : public IMessageBox {
public:
    explicit TerminalMessages(int input = STDIN_FILENO, int output = STDOUT_FILENO,
                              int error = STDERR_FILENO);

    void show(const QString& text, MessageKind kind) override;
    [[nodiscard]] bool askYesNo(const QString& text) override;

private:
    [[nodiscard]] bool somebodyCanAnswer() const;
    [[nodiscard]] QByteArray readLine() const;

    int m_input;
    int m_output;
    int m_error;
};

} // namespace fldc
