#include "platform/qt/display/MessageChooser.h"

#include <QGuiApplication>

#include <utility>

#include <unistd.h>

namespace fldc {

bool displayPresent()
{
    const QString platform = QGuiApplication::platformName();
    return !platform.isEmpty() && platform != QLatin1String("offscreen") &&
           platform != QLatin1String("minimal");
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
    chosen().show(text, kind);
}

bool MessageChooser::askYesNo(const QString& text)
{
    return chosen().askYesNo(text);
}

IMessageBox& MessageChooser::chosen() const
{
    const bool asWindow = m_surroundings.displayPresent() &&
                          (m_surroundings.windowVisible() || !m_surroundings.terminalAttached());
    return asWindow ? m_desktop : m_terminal;
}

} // namespace fldc
