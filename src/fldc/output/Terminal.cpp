#include "fldc/output/Terminal.h"

#include <sys/ioctl.h>

namespace fldc::cli {

using namespace Qt::StringLiterals;

namespace {

constexpr int defaultColumns = 80;
constexpr int red = 31;
constexpr int yellow = 33;

int columnsOf(int descriptor)
{
    winsize size{};
    const bool known = ::ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return known ? size.ws_col : defaultColumns;
}

} // namespace

Terminal::Terminal(int descriptor)
    : m_stream(descriptor),
      m_isCapable(m_stream.isTerminal() && qEnvironmentVariable("TERM") != "dumb"_L1),
      m_hasColours(m_isCapable && qEnvironmentVariableIsEmpty("NO_COLOR")), m_progress(m_isCapable)
{
}

void Terminal::complain(const QString& what, const QString& hint)
{
    endLine();
    write(coloured(u"fldc:", red) + u' ' + printable(what) + u'\n');
    if (!hint.isEmpty())
        write(coloured(u"hint:", yellow) + u' ' + printable(hint) + u'\n');
}

void Terminal::note(const QString& text)
{
    endLine();
    write(printable(text) + u'\n');
}

void Terminal::show(const Progress& progress)
{
    write(m_progress.next(progress, columnsOf(m_stream.descriptor())));
}

void Terminal::endLine()
{
    write(m_progress.end());
}

bool Terminal::finish(int wakeDescriptor, bool isEnding)
{
    endLine();
    return m_stream.finish(wakeDescriptor, isEnding);
}

QString Terminal::coloured(QStringView label, int colour) const
{
    if (!m_hasColours)
        return label.toString();
    return u"\x1b[1;%1m%2\x1b[0m"_s.arg(colour).arg(label);
}

void Terminal::write(const QString& text)
{
    if (!text.isEmpty())
        m_stream.write(text.toUtf8());
}

QString oneLine(const QString& name)
{
    return printable(name).replace(u'\n', QChar::ReplacementCharacter);
}

} // namespace fldc::cli
