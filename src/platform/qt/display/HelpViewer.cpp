#include "platform/qt/display/HelpViewer.h"

#include "platform/PlatformFailure.h"

#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QTimer>

#include <utility>

#include <poll.h>
#include <sys/syscall.h>

namespace fldc {

namespace {

const auto viewerName = QStringLiteral("xchm");

// The page of the book with the number 2368 of its map; the contents for any other.
QString pageOf(const QString& book, std::int32_t topic)
{
    const QString folder = book.left(book.lastIndexOf(u'.'));
    return folder +
           (topic == 2368 ? QStringLiteral("/window.html") : QStringLiteral("/index.html"));
}

} // namespace

HelpViewer::HelpViewer(OpenPage openPage) : m_openPage(std::move(openPage)) {}

void HelpViewer::displayContents(const QString& file)
{
    const QString book = QString(file).replace(u'\\', u'/');
    m_program = QStandardPaths::findExecutable(viewerName);
    if (m_program.isEmpty() && !QFileInfo::exists(pageOf(book, 0)))
        throw PlatformFailure(FailureNumber::FileNotFound, viewerName);
    m_file = book;
    m_topic = 0;
    if (!m_program.isEmpty())
        startLater();
}

void HelpViewer::displayTopic(std::uintptr_t /*owner*/, const QString& file, std::int32_t context)
{
    displayContents(file);
    m_topic = context;
    if (m_program.isEmpty() &&
        !m_openPage(QUrl::fromLocalFile(pageOf(std::exchange(m_file, {}), m_topic))))
        throw PlatformFailure(FailureNumber::FileNotFound, viewerName);
}

void HelpViewer::startLater()
{
    QTimer::singleShot(0, &m_context, [this] {
        if (!m_file.isEmpty())
            start();
    });
}

void HelpViewer::start()
{
    const QString file = std::exchange(m_file, {});
    if (viewerLives())
        return;
    QStringList arguments{file};
    if (m_topic != 0)
        arguments = {QStringLiteral("-c"), QString::number(m_topic), file};
    qint64 process = 0;
    if (QProcess::startDetached(m_program, arguments, {}, &process))
        m_viewer = FileDescriptor(
            static_cast<int>(::syscall(SYS_pidfd_open, static_cast<pid_t>(process), 0)));
}

// A process that has ended makes its descriptor readable.
bool HelpViewer::viewerLives() const
{
    pollfd process{m_viewer.get(), POLLIN, 0};
    return m_viewer.valid() && ::poll(&process, 1, 0) == 0;
}

} // namespace fldc
