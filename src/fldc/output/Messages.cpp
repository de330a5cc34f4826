#include "fldc/output/Messages.h"

#include "fldc/output/Output.h"
#include "platform/qt/TerminalMessages.h"

#include <unistd.h>

namespace fldc::cli {

void Messages::show(const QString& text, MessageKind kind)
{
    if (kind == MessageKind::Error)
        m_output.terminal().complain(text);
    else
        m_output.terminal().note(text);
}

bool Messages::askYesNo(const QString& text)
{
    m_output.terminal().endLine();
    if (m_output.isJson() || !m_output.terminal().isTerminal() || ::isatty(STDIN_FILENO) == 0)
        return false;
    return TerminalMessages(STDIN_FILENO, STDERR_FILENO, STDERR_FILENO).askYesNo(text);
}

void CountedMessages::show(const QString& text, MessageKind /*kind*/)
{
    if (m_count++ == 0)
        m_first = text;
}

} // namespace fldc::cli
