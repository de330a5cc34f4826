#include "platform/qt/ChildProcess.h"

#include <array>
#include <utility>

#include <csignal>
#include <unistd.h>

namespace fldc {

ChildProcess::ChildProcess(std::function<void(const QByteArray&)> onLine,
                           std::function<void(const Ended&)> onEnd)
    : m_onLine(std::move(onLine)), m_onEnd(std::move(onEnd))
{
    m_process.setStandardInputFile(QProcess::nullDevice());
    m_process.setStandardErrorFile(QProcess::nullDevice());
    m_process.setChildProcessModifier([] { ::setpgid(0, 0); });
    QObject::connect(&m_process, &QProcess::readyReadStandardOutput, &m_process,
                     [this] { readLines(); });
    QObject::connect(&m_process, &QProcess::finished, &m_process,
                     [this](int exitCode, QProcess::ExitStatus status) {
                         m_patience.stop();
                         readLines();
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
    m_process.start(program, arguments, QProcess::ReadOnly);
}

void ChildProcess::askToEnd(int number)
{
    if (m_process.state() == QProcess::NotRunning)
        return;
    ::kill(static_cast<pid_t>(m_process.processId()), number);
    if (!m_patience.isActive())
        m_patience.start(mostPatience);
}

void ChildProcess::readLines()
{
    while (m_process.canReadLine())
        m_onLine(m_process.readLine());
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
    for (qsizetype end = m_rest.indexOf('\n'); end >= 0; end = m_rest.indexOf('\n')) {
        const QString line = QString::fromUtf8(m_rest.first(end)).trimmed();
        m_rest.remove(0, end + 1);
        m_onLine(line);
    }
}

} // namespace fldc
