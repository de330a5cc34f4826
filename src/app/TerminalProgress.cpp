#include "app/TerminalProgress.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <utility>

namespace fldc {

namespace {

constexpr int barWidth = 24;
constexpr int defaultColumns = 80;

int columnsOf(int fileDescriptor)
{
    winsize size{};
    const bool known = ioctl(fileDescriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return known ? size.ws_col : defaultColumns;
}

QString bar(int progress)
{
    const int filled = progress * barWidth / 100;
    return u'[' + QString(filled, u'#') + QString(barWidth - filled, u'.') + u']' +
           QString::number(progress).rightJustified(4) + QStringLiteral(" % ");
}

} // namespace

TerminalProgress::TerminalProgress(int fileDescriptor) : m_fileDescriptor(fileDescriptor) {}

TerminalProgress::~TerminalProgress()
{
    watch(nullptr);
    endLine();
}

void TerminalProgress::watch(std::shared_ptr<DownloadWindow> window)
{
    if (m_window)
        m_window->removeObserver(*this);
    m_window = std::move(window);
    if (m_window)
        m_window->addObserver(*this);
}

void TerminalProgress::say(const QString& text)
{
    endLine();
    write(text + u'\n');
}

void TerminalProgress::windowChanged(WindowPart part)
{
    if (part == WindowPart::Status && m_window->statusPanelStatus() != m_status) {
        endLine();
        m_status = m_window->statusPanelStatus();
        m_progress = 0;
        redraw();
    } else if (part == WindowPart::Progress && m_window->progress() != m_progress) {
        m_progress = m_window->progress();
        redraw();
    }
}

void TerminalProgress::redraw()
{
    QString line = m_status;
    if (m_progress > 0)
        line = line.leftJustified(40) + bar(m_progress) + m_window->fileName();
    // A line that fills the terminal would wrap, and could not be drawn over.
    write(QStringLiteral("\r\x1b[K") + line.left(columnsOf(m_fileDescriptor) - 1));
    m_lineOpen = true;
}

void TerminalProgress::endLine()
{
    if (std::exchange(m_lineOpen, false))
        write(QStringLiteral("\n"));
}

void TerminalProgress::write(const QString& text) const
{
    const QByteArray bytes = text.toLocal8Bit();
    // A terminal that went away is no reason to fail.
    [[maybe_unused]] const auto written =
        ::write(m_fileDescriptor, bytes.constData(), static_cast<std::size_t>(bytes.size()));
}

} // namespace fldc
