#include "platform/qt/ChildProcess.h"

#include "platform/PlatformFailure.h"

#include <array>
#include <utility>

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace fldc {

namespace {

// Hands the whole lines of @p text to @p onLine and keeps the rest.
void takeLines(QByteArray& text, const std::function<void(const QByteArray&)>& onLine)
{
    for (qsizetype end = text.indexOf('\n'); end >= 0; end = text.indexOf('\n')) {
        const QByteArray line = text.first(end + 1);
        text.remove(0, end + 1);
        onLine(line);
    }
}

} // namespace

ChildProcess::ChildProcess(std::function<void(const QByteArray&)> onLine,
                           std::function<void(const Ended&)> onEnd)
    : m_onLine(std::move(onLine)), m_onEnd(std::move(onEnd))
{
    m_process.setStandardInputFile(QProcess::nullDevice());
    m_process.setStandardOutputFile(QProcess::nullDevice());
    m_process.setStandardErrorFile(QProcess::nullDevice());
    openPipe();
    m_process.setChildProcessModifier([output = m_writeEnd.get()] {
        ::setpgid(0, 0);
        ::dup2(output, STDOUT_FILENO);
    });
    QObject::connect(&m_process, &QProcess::finished, &m_process,
                     [this](int exitCode, QProcess::ExitStatus status) {
                         m_patience.stop();
                         read(); // the rest
                         m_onEnd({exitCode, status == QProcess::CrashExit, {}});
                     });
    QObject::connect(&m_process, &QProcess::errorOccurred, &m_process,
                     [this](QProcess::ProcessError error) {
                         if (error == QProcess::FailedToStart)
                             m_onEnd({0, true, m_process.errorString()});
                     });
    m_patience.setSingleShot(true);
    QObject::connect(&m_patience, &QTimer::timeout, &m_process, &QProcess::kill);
}

ChildProcess::~ChildProcess()
{
    m_process.disconnect();
    if (m_process.state() == QProcess::NotRunning)
        return;
    m_process.terminate();
    if (m_process.waitForFinished(std::chrono::milliseconds(mostPatience).count()))
        return;
    m_process.kill();
    m_process.waitForFinished(-1); // nothing outlives that signal
}

void ChildProcess::start(const QString& program, const QStringList& arguments)
{
    m_process.start(program, arguments, QIODevice::NotOpen);
    m_writeEnd.close();
}

void ChildProcess::openPipe()
{
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) == -1)
        throw PlatformFailure::fromErrno(errno, QStringLiteral("pipe"));
    m_readEnd = FileDescriptor(ends[0]);
    m_writeEnd = FileDescriptor(ends[1]);
    (void)::fcntl(m_readEnd.get(), F_SETFL, O_NONBLOCK); // this end alone
    m_notifier = std::make_unique<QSocketNotifier>(m_readEnd.get(), QSocketNotifier::Read);
    QObject::connect(m_notifier.get(), &QSocketNotifier::activated, m_notifier.get(),
                     [this] { read(); });
}

void ChildProcess::askToEnd(int number)
{
    if (m_process.state() == QProcess::NotRunning)
        return;
    ::kill(static_cast<pid_t>(m_process.processId()), number);
    if (!m_patience.isActive())
        m_patience.start(mostPatience);
}

void ChildProcess::stopReading()
{
    m_notifier->setEnabled(false);
    m_readEnd.close();
}

void ChildProcess::read()
{
    std::array<char, 4096> buffer{};
    while (m_readEnd.valid()) {
        const ssize_t count =
            uninterrupted([&] { return ::read(m_readEnd.get(), buffer.data(), buffer.size()); });
        if (count == 0)
            m_notifier->setEnabled(false);
        if (count <= 0)
            return;
        m_rest.append(buffer.data(), count);
        takeLines(m_rest, m_onLine);
    }
}

StandardInput::StandardInput(std::function<void(const std::optional<QString>&)> onLine)
    : m_onLine(std::move(onLine)), m_notifier(STDIN_FILENO, QSocketNotifier::Read)
{
    QObject::connect(&m_notifier, &QSocketNotifier::activated, &m_notifier, [this] { read(); });
}

void StandardInput::read()
{
    std::array<char, 4096> buffer{};
    const ssize_t count = ::read(STDIN_FILENO, buffer.data(), buffer.size());
    if (count <= 0) {
        m_notifier.setEnabled(false);
        if (!m_rest.isEmpty())
            m_onLine(QString::fromUtf8(m_rest).trimmed()); // a last line without its end
        m_onLine(std::nullopt);
        return;
    }
    m_rest.append(buffer.data(), count);
    takeLines(m_rest,
              [this](const QByteArray& line) { m_onLine(QString::fromUtf8(line).trimmed()); });
}

} // namespace fldc
