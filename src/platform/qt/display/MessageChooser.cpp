#include "platform/qt/display/MessageChooser.h"

#include "platform/qt/ProgramInfo.h"

#include <utility>

#include <unistd.h>

namespace fldc {

bool displayPresent()
{
    return ProgramInfo().screenPresent();
}

bool terminalAttached()
{
    return ::isatty(STDIN_FILENO) || ::isatty(STDOUT_FILENO) || ::isatty(STDERR_FILENO);
}

MessageChooser::MessageChooser(IMessageBox& desktop, IMessageBox& terminal,
                               Surroundings surroundings)
    : m_desktop(desktop), m_terminal(terminal), m_surroundings(std::move(surroundings))
{
}

void MessageChooser::show(const QString& text, MessageKind kind)
{
    (nobodyWaits() ? m_terminal : chosen()).show(text, kind);
}

bool MessageChooser::askYesNo(const QString& text)
{
    return !nobodyWaits() && chosen().askYesNo(text);
}

void MessageChooser::dismiss()
{
    m_desktop.dismiss();
    m_terminal.dismiss();
}

bool MessageChooser::nobodyWaits() const
{
    return m_surroundings.nobodyWaits && m_surroundings.nobodyWaits();
}

IMessageBox& MessageChooser::chosen() const
{
    const bool asWindow = m_surroundings.displayPresent() &&
                          (m_surroundings.windowVisible() || !m_surroundings.terminalAttached());
    return asWindow ? m_desktop : m_terminal;
}

} // namespace fldc
