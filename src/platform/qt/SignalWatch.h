#pragma once

#include "platform/qt/FileDescriptor.h"

#include <QSocketNotifier>

#include <csignal>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace fldc {

/// Turns the signals that ask a program to end (SIGINT, SIGTERM, and SIGHUP unless it was ignored)
/// into a call of @p callback inside the event loop. System calls that block are interrupted, so
/// that a question on the terminal ends too. SIGPIPE is ignored while a watch exists: a reader of
/// the program's texts that goes away must not end a download. At most one watch exists.
class SignalWatch {
public:
    explicit SignalWatch(std::function<void()> callback);
    ~SignalWatch();
    SignalWatch(const SignalWatch&) = delete;
    SignalWatch& operator=(const SignalWatch&) = delete;

    /// The first signal that came since the watch was made, be the event loop run or not; 0 for
    /// none.
    [[nodiscard]] int received() const;
    /// Becomes readable when a signal comes whose callback has not yet been called.
    [[nodiscard]] int descriptor() const { return m_readEnd.get(); }

private:
    void handle(int signal, void (*handler)(int));
    void notice();

    std::function<void()> m_callback;
    FileDescriptor m_readEnd;
    FileDescriptor m_writeEnd;
    std::unique_ptr<QSocketNotifier> m_notifier;
    std::vector<std::pair<int, struct sigaction>> m_previous;
};

} // namespace fldc
