#include "platform/qt/TerminalMessages.h"

#include "platform/qt/FileDescriptor.h"

#include <termios.h>

namespace fldc {

namespace {

/// Failures are ignored: there is nowhere left to report them.
void print(int descriptor, QString text)
{
    const QByteArray bytes =
        text.replace(QStringLiteral("\r\n"), QStringLiteral("\n")).toLocal8Bit();
    static_cast<void>(writeAll(descriptor, {bytes.constData(), std::size_t(bytes.size())}));
}

} // namespace

TerminalMessages::TerminalMessages(int input, int output, int error)
    : m_input(input), m_output(output), m_error(error)
{
}

void TerminalMessages::show(const QString& text, MessageKind kind)
{
    print(kind == MessageKind::Information ? m_output : m_error, text + u'\n');
}

bool TerminalMessages::askYesNo(const QString& text)
{
    const bool canAnswer = somebodyCanAnswer();
    const int screen = !::isatty(m_error) && ::isatty(m_output) ? m_output : m_error;
    if (!canAnswer) {
        print(screen, text + QStringLiteral(" [y/N] No\n"));
        return false;
    }
    ::tcflush(m_input, TCIFLUSH);
    print(screen, text + QStringLiteral(" [y/N] "));
    const QByteArray answer = readLine().trimmed().toLower();
    return answer == "y" || answer == "yes";
}

bool TerminalMessages::somebodyCanAnswer() const
{
    if (!::isatty(m_input) || !(::isatty(m_error) || ::isatty(m_output)))
        return false;
    // Reading from a background job would stop the process.
    const pid_t foreground = ::tcgetpgrp(m_input);
    return foreground == -1 || foreground == ::getpgrp();
}

QByteArray TerminalMessages::readLine() const
{
    QByteArray line;
    char character = 0;
    // Not repeated after a signal: SIGINT at the question means No.
    while (::read(m_input, &character, 1) == 1) {
        if (character == '\n')
            return line;
        line.append(character);
    }
    print(m_error, QStringLiteral("\n"));
    return {};
}

} // namespace fldc
