#pragma once

#include "platform/qt/FileDescriptor.h"

#include <QByteArray>
#include <QProcess>
#include <QSocketNotifier>
#include <QString>
#include <QStringList>
#include <QTimer>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

namespace fldc {

/// Another program, its standard output read by lines. Its standard input and error are nothing's.
/// It is in a process group of its own: the signals of a terminal reach it only through its owner.
///
/// Callbacks come from the event loop and must not throw. The destructor asks the program to end
/// and waits for that, for at most mostPatience.
class ChildProcess {
public:
    /// What a program that was asked to end gets to end in order, before it is killed.
    static constexpr std::chrono::seconds mostPatience{20};

    struct Ended {
        int exitCode = 0;
        bool crashed = false; ///< ended by a signal, or it could not be started
        QString failure;      ///< why it could not be started
    };

    ChildProcess(std::function<void(const QByteArray& line)> onLine,
                 std::function<void(const Ended&)> onEnd);
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    void start(const QString& program, const QStringList& arguments);
    /// Sends the signal @p number, and SIGKILL when the program is still there after mostPatience:
    /// one that hangs or is stopped holds nobody up.
    void askToEnd(int number);
    /// Reads nothing more: what the program writes from now on fails, as into any pipe whose reader
    /// has gone. It is not killed, however long it takes.
    void stopReading();

private:
    void openPipe();
    void read();

    QProcess m_process;
    FileDescriptor m_readEnd; ///< not QProcess's own pipe, which stays open until the program ends
    FileDescriptor m_writeEnd;
    std::unique_ptr<QSocketNotifier> m_notifier;
    QByteArray m_rest;
    QTimer m_patience;
    std::function<void(const QByteArray&)> m_onLine;
    std::function<void(const Ended&)> m_onEnd;
};

/// The lines of the program's own standard input as they come.
class StandardInput {
public:
    /// @p onLine: a line without its end; nothing at the end of the input, the last call.
    explicit StandardInput(std::function<void(const std::optional<QString>&)> onLine);

private:
    void read();

    std::function<void(const std::optional<QString>&)> m_onLine;
    QByteArray m_rest;
    QSocketNotifier m_notifier;
};

} // namespace fldc
