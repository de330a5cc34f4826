#include "platform/qt/SignalWatch.h"

#include "platform/PlatformFailure.h"
#include "platform/qt/CallbackGuard.h"

#include <array>

#include <fcntl.h>

namespace fldc {

namespace {

volatile std::sig_atomic_t signalPipe = -1;
volatile std::sig_atomic_t firstSignal = 0;

extern "C" void writeToSignalPipe(int signal)
{
    const int savedErrno = errno;
    if (firstSignal == 0)
        firstSignal = signal;
    // A full pipe is fine: the notifier has something to read already.
    [[maybe_unused]] const auto count = ::write(signalPipe, "s", 1);
    errno = savedErrno;
}

} // namespace

SignalWatch::SignalWatch(std::function<void()> callback) : m_callback(std::move(callback))
{
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) == -1)
        throw PlatformFailure::fromErrno(errno, QStringLiteral("signal pipe"));
    m_readEnd = FileDescriptor(ends[0]);
    m_writeEnd = FileDescriptor(ends[1]);
    m_notifier = std::make_unique<QSocketNotifier>(m_readEnd.get(), QSocketNotifier::Read);
    QObject::connect(m_notifier.get(), &QSocketNotifier::activated, m_notifier.get(),
                     [this] { callGuarded([this] { notice(); }); });
    signalPipe = m_writeEnd.get();
    firstSignal = 0;
    handle(SIGPIPE, SIG_IGN);
    handle(SIGINT, writeToSignalPipe);
    handle(SIGTERM, writeToSignalPipe);
    struct sigaction present {};
    if (::sigaction(SIGHUP, nullptr, &present) == 0 && present.sa_handler != SIG_IGN)
        handle(SIGHUP, writeToSignalPipe);
}

SignalWatch::~SignalWatch()
{
    for (const auto& [signal, action] : m_previous)
        ::sigaction(signal, &action, nullptr);
    signalPipe = -1;
}

int SignalWatch::received() const
{
    return firstSignal;
}

void SignalWatch::handle(int signal, void (*handler)(int))
{
    struct sigaction action {};
    struct sigaction previous {};
    action.sa_handler = handler; // without SA_RESTART, so that blocking calls end
    if (::sigaction(signal, &action, &previous) == 0)
        m_previous.emplace_back(signal, previous);
}

void SignalWatch::notice()
{
    std::array<char, 64> bytes{};
    while (::read(m_readEnd.get(), bytes.data(), bytes.size()) > 0) {
    }
    m_callback();
}

} // namespace fldc
