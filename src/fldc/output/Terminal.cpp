#include "fldc/output/Terminal.h"

#include <algorithm>
#include <utility>

#include <sys/ioctl.h>

namespace fldc::cli {

using namespace Qt::StringLiterals;

namespace {

constexpr int defaultColumns = 80;
constexpr int defaultRows = 24;
constexpr int green = 32;
constexpr int red = 31;
constexpr int yellow = 33;

winsize sizeOf(int descriptor)
{
    winsize size{};
    const bool known =
        ::ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 && size.ws_row > 0;
    return known ? size : winsize{defaultRows, defaultColumns, 0, 0};
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
    write(m_progress.next(progress, sizeOf(m_stream.descriptor()).ws_col));
}

void Terminal::showBoard(const std::vector<BoardLine>& lines)
{
    if (!m_isCapable || lines.empty())
        return;
    const winsize size = sizeOf(m_stream.descriptor());
    const std::size_t shown = std::min(lines.size(), boardRows());
    QString text = eraseBoard();
    for (std::size_t i = 0; i < shown; ++i) {
        const BoardLine& line = i + 1 == shown ? lines.back() : lines[i];
        const QString fitting = line.text.left(size.ws_col - 1);
        text += line.tone == BoardLine::Tone::Plain
                    ? fitting
                    : coloured(fitting, line.tone == BoardLine::Tone::Good ? green : red);
        text += u'\n';
    }
    m_boardLines = shown;
    write(text);
}

std::size_t Terminal::boardRows() const
{
    return std::max<std::size_t>(sizeOf(m_stream.descriptor()).ws_row, 3) - 2;
}

QString Terminal::eraseBoard()
{
    const std::size_t lines = std::exchange(m_boardLines, 0);
    return lines == 0 ? QString() : u"\x1b[%1A\x1b[J"_s.arg(lines);
}

void Terminal::endLine()
{
    write(m_progress.end() + eraseBoard());
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
