#include "fldc/process/OutputStream.h"

#include "platform/qt/FileDescriptor.h"

#include <algorithm>
#include <array>
#include <climits>
#include <utility>

#include <poll.h>
#include <sys/stat.h>

namespace fldc::cli {

namespace {

// With a run that a signal has ended nobody waits for ever for a reader that does not read;
// milliseconds.
constexpr int mostPatience = 5000;

bool isRegularFile(int descriptor)
{
    struct stat status {};
    return ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

} // namespace

OutputStream::OutputStream(int descriptor, std::function<void()> onLost)
    : m_descriptor(descriptor), m_onLost(std::move(onLost)),
      m_isTerminal(::isatty(descriptor) == 1), m_isFile(isRegularFile(descriptor))
{
}

void OutputStream::write(const QByteArray& text) noexcept
{
    if (m_error != 0)
        return;
    try {
        m_pending += text;
        while (writeWhatFits()) {
        }
    } catch (...) {
        lose(ENOMEM);
    }
}

void OutputStream::checkReader() noexcept
{
    pollfd state{m_descriptor, 0, 0};
    if (m_error == 0 && uninterrupted([&] { return ::poll(&state, 1, 0); }) == 1)
        lose(EPIPE);
}

// True when there is more to write and the output takes more now.
bool OutputStream::writeWhatFits()
{
    const qsizetype left = m_pending.size() - m_written;
    if (m_error != 0 || left == 0)
        return false;
    pollfd state{m_descriptor, POLLOUT, 0};
    if (uninterrupted([&] { return ::poll(&state, 1, 0); }) == 0)
        return false;
    // Something that is ready takes PIPE_BUF bytes without blocking.
    const qsizetype most = m_isFile ? left : std::min(left, qsizetype{PIPE_BUF});
    const ssize_t count = uninterrupted([&] {
        return ::write(m_descriptor, m_pending.constData() + m_written,
                       static_cast<std::size_t>(most));
    });
    if (count == -1) {
        if (errno != EAGAIN)
            lose(errno);
        return false;
    }
    m_written += count;
    if (m_written < m_pending.size())
        return true;
    m_pending.clear();
    m_written = 0;
    return false;
}

bool OutputStream::finish(int wakeDescriptor, bool isEnding) noexcept
{
    std::array<char, 64> old{};
    while (::read(wakeDescriptor, old.data(), old.size()) > 0) {
    }
    for (;;) {
        while (writeWhatFits()) {
        }
        if (m_error != 0 || m_pending.isEmpty())
            return true;
        std::array states{pollfd{m_descriptor, POLLOUT, 0}, pollfd{wakeDescriptor, POLLIN, 0}};
        const int ready = ::poll(states.data(), states.size(), isEnding ? mostPatience : -1);
        if (ready == 0 || states[1].revents != 0)
            return false;
    }
}

void OutputStream::lose(int error)
{
    m_error = error;
    m_pending.clear();
    m_written = 0;
    if (m_onLost)
        m_onLost();
}

} // namespace fldc::cli
