#include "platform/qt/TerminalMessages.h"

#include "platform/qt/FileDescriptor.h"
#include "platform/qt/QtEvents.h"

#include <QScopedValueRollback>
#include <QSocketNotifier>

#include <algorithm>
#include <array>

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
    startText();
    print(kind == MessageKind::Information ? m_output : m_error, text + u'\n');
}

bool TerminalMessages::askYesNo(const QString& text)
{
    startText();
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
    // Reading from a background job would stop the process.
    return !m_asking && (::isatty(m_error) || ::isatty(m_output)) && inForegroundOf(m_input);
}

void TerminalMessages::startText()
{
    if (m_endLine)
        m_endLine();
    if (m_asking)
        print(m_error, QStringLiteral("\n"));
}

// One line, without its end; empty when the input ended before, or the question was dismissed.
QByteArray TerminalMessages::readLine()
{
    QByteArray line;
    bool inputEnded = false;
    QSocketNotifier typed(m_input, QSocketNotifier::Read);
    QObject::connect(&typed, &QSocketNotifier::activated, &typed, [&] {
        std::array<char, 256> characters{};
        const ssize_t count = ::read(m_input, characters.data(), characters.size());
        inputEnded = count == 0 || (count == -1 && errno != EINTR && errno != EAGAIN);
        line.append(characters.data(), std::max<ssize_t>(count, 0));
    });
    m_dismissed = false;
    const QScopedValueRollback asking(m_asking, true);
    while (!line.contains('\n') && !inputEnded && !m_dismissed)
        QtEvents().waitForEvents();
    if (line.contains('\n'))
        return line.left(line.indexOf('\n'));
    print(m_error, QStringLiteral("\n"));
    return {};
}

} // namespace fldc
