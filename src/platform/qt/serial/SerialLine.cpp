#include "platform/qt/serial/SerialLine.h"

#include "platform/qt/CallbackGuard.h"

#include <QFile>

#include <algorithm>
#include <array>
#include <chrono>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/ioctl.h>

// The kernel's own termios2 instead of <termios.h>: it alone takes any speed as a number.
#include <asm/termbits.h>
#include <linux/serial.h>

namespace fldc {

namespace {

using namespace std::chrono_literals;
using SteadyClock = std::chrono::steady_clock;

struct StandardSpeed {
    std::uint32_t bitsPerSecond;
    tcflag_t constant;
};

/// Speeds with a constant of their own. Others go through BOTHER, which older drivers lack.
constexpr std::array standardSpeeds{
    StandardSpeed{9600, B9600},   StandardSpeed{19200, B19200},   StandardSpeed{38400, B38400},
    StandardSpeed{57600, B57600}, StandardSpeed{115200, B115200},
};

/// A caller begins to wait for the answer when write() returns. With more than a frame still queued
/// that could run out before the radio has heard the end: the system's buffer holds 4096 bytes,
/// which are 2 seconds at 19200.
constexpr int mostQueued = 512;

tcflag_t speedConstant(std::uint32_t speed)
{
    const auto* found = std::ranges::find(standardSpeeds, speed, &StandardSpeed::bitsPerSecond);
    return found == standardSpeeds.end() ? tcflag_t{BOTHER} : found->constant;
}

/// Time that @p bytes take on the line: 10 bit times each.
std::chrono::nanoseconds wireTime(std::int64_t bytes, std::uint32_t speed)
{
    return bytes * std::chrono::nanoseconds(10s) / speed;
}

/// When a line that works must have sent @p bytes: twice their time, and a margin for the adapter.
SteadyClock::time_point sendDeadline(std::int64_t bytes, std::uint32_t speed)
{
    return SteadyClock::now() + 2 * wireTime(bytes, speed) + 500ms;
}

/// Waits for @p events, a signal or the end of @p longest. Returns false when the line hung up.
bool waitForLine(int descriptor, short events, std::chrono::nanoseconds longest)
{
    const auto whole = std::chrono::duration_cast<std::chrono::seconds>(longest);
    const timespec timeout{whole.count(), (longest - whole).count()};
    pollfd line{descriptor, events, 0};
    return ::ppoll(&line, 1, &timeout, nullptr) <= 0 ||
           (line.revents & (POLLHUP | POLLERR | POLLNVAL)) == 0;
}

FileDescriptor openDevice(const QString& path)
{
    const QByteArray name = QFile::encodeName(path);
    FileDescriptor file(uninterrupted(
        [&] { return ::open(name.constData(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC); }));
    if (file.valid())
        return file;
    switch (const int error = errno) {
    case ENOENT:
    case ENXIO:
    case ENODEV:
        throw serialFailure(SerialFailure::InvalidPortNumber, path);
    case EBUSY:
        throw serialFailure(SerialFailure::PortAlreadyOpen, path);
    default:
        throw PlatformFailure::fromErrno(error, path);
    }
}

/// Asks for bytes to be handed over as they arrive. Few drivers know the request; an adapter that
/// collects them for 16 ms costs that much per answer without it.
void askForLowLatency(int descriptor)
{
    constexpr int lowLatency = static_cast<int>(ASYNC_LOW_LATENCY);
    serial_struct info{};
    if (::ioctl(descriptor, TIOCGSERIAL, &info) == -1 || (info.flags & lowLatency) != 0)
        return;
    info.flags |= lowLatency;
    ::ioctl(descriptor, TIOCSSERIAL, &info);
}

} // namespace

PlatformFailure serialFailure(SerialFailure number, const QString& device)
{
    const auto description = [number] {
        switch (number) {
        case SerialFailure::InvalidPortNumber:
            return QStringLiteral("invalid port number, no such device");
        case SerialFailure::PortAlreadyOpen:
            return QStringLiteral("port already open");
        case SerialFailure::DeviceNotOpen:
            return QStringLiteral("the device is not open");
        case SerialFailure::OnlyWhilePortOpen:
            return QStringLiteral("operation valid only while the port is open");
        }
        return QString();
    };
    return {static_cast<int>(number), device + QStringLiteral(": ") + description()};
}

SerialLine::SerialLine(const QString& path) : m_path(path), m_file(openDevice(path))
{
    termios2 present{};
    if (::ioctl(descriptor(), TCGETS2, &present) == -1)
        fail(errno);
    if (uninterrupted([&] { return ::flock(descriptor(), LOCK_EX | LOCK_NB); }) == -1) {
        if (errno == EWOULDBLOCK)
            throw serialFailure(SerialFailure::PortAlreadyOpen, path);
        fail(errno);
    }
    // Root is not stopped by the exclusive mode of a program that takes no lock; look for it.
    int exclusive = 0;
    if (::ioctl(descriptor(), TIOCGEXCL, &exclusive) == 0 && exclusive != 0)
        throw serialFailure(SerialFailure::PortAlreadyOpen, path);
    if (::ioctl(descriptor(), TIOCEXCL) == -1)
        fail(errno);
    askForLowLatency(descriptor());
}

SerialLine::~SerialLine()
{
    // The mode would outlive this object while anybody else has the device open.
    ::ioctl(descriptor(), TIOCNXCL);
}

void SerialLine::configure(std::uint32_t speed)
{
    termios2 settings{};
    if (::ioctl(descriptor(), TCGETS2, &settings) == -1)
        fail(errno);
    settings.c_iflag = 0;
    settings.c_oflag = 0;
    settings.c_lflag = 0;
    // CLOCAL without HUPCL: closing for a change of speed must not drop the control lines.
    settings.c_cflag = speedConstant(speed) | CS8 | CREAD | CLOCAL;
    settings.c_ispeed = speed;
    settings.c_ospeed = speed;
    // VMIN 1 makes "nothing there" EAGAIN, so that 0 can only be a hang-up.
    settings.c_cc[VMIN] = 1;
    settings.c_cc[VTIME] = 0;
    termios2 actual{};
    if (::ioctl(descriptor(), TCSETS2, &settings) == -1 ||
        ::ioctl(descriptor(), TCGETS2, &actual) == -1)
        fail(errno);
    // The call succeeds also when the driver did only a part of it. A receiver stands 3 %.
    const std::int64_t difference = std::int64_t{actual.c_ospeed} - speed;
    constexpr tcflag_t frame = CSIZE | PARENB | CSTOPB | CRTSCTS;
    if (std::abs(difference) * 100 > std::int64_t{speed} * 3 || (actual.c_cflag & frame) != CS8)
        throw PlatformFailure(EINVAL, m_path + QStringLiteral(": the line can't run at ") +
                                          QString::number(speed) +
                                          QStringLiteral(" bits per second, 8 data bits"));
    m_speed = speed;
}

void SerialLine::watch(std::function<void()> activity)
{
    m_notifier = std::make_unique<QSocketNotifier>(descriptor(), QSocketNotifier::Read);
    QObject::connect(m_notifier.get(), &QSocketNotifier::activated, m_notifier.get(),
                     [activity = std::move(activity)] { callGuarded(activity); });
}

void SerialLine::setWatching(bool on)
{
    m_notifier->setEnabled(on);
}

int SerialLine::receive(QByteArray& received, qsizetype limit)
{
    std::array<char, 4096> chunk{};
    const auto room = static_cast<std::size_t>(std::clamp<qsizetype>(limit, 0, chunk.size()));
    if (room == 0)
        return 0;
    const ssize_t count = uninterrupted([&] { return ::read(descriptor(), chunk.data(), room); });
    if (count == -1)
        return errno == EAGAIN ? 0 : errno;
    received.append(chunk.data(), count);
    return count == 0 ? EIO : 0;
}

int SerialLine::write(const QByteArray& bytes)
{
    if (const int error = waitForQueue(mostQueued))
        return error;
    const char* next = bytes.constData();
    qsizetype left = bytes.size();
    const auto deadline = sendDeadline(mostQueued + left, m_speed);
    auto wait = wireTime(left, m_speed);
    while (left > 0) {
        const ssize_t count = uninterrupted(
            [&] { return ::write(descriptor(), next, static_cast<std::size_t>(left)); });
        if (count > 0) {
            next += count;
            left -= count;
            wait = wireTime(left, m_speed);
            continue;
        }
        if (count == -1 && errno != EAGAIN)
            return errno;
        const auto remaining = deadline - SteadyClock::now();
        if (remaining <= 0ns) {
            discardQueued();
            return ETIMEDOUT;
        }
        // A driver reports room only when its buffer is nearly empty; what is left may fit much
        // sooner, so the first waits are as long as the line needs for it.
        if (!waitForLine(descriptor(), POLLOUT,
                         std::min<std::chrono::nanoseconds>(wait, remaining)))
            return EIO;
        wait = std::min<std::chrono::nanoseconds>(wait * 2, remaining);
    }
    return 0;
}

int SerialLine::drain()
{
    if (const int error = waitForQueue(0))
        return error;
    const auto deadline = sendDeadline(0, m_speed);
    // The queue is empty: what may be left is in the transmitter, which takes a moment.
    while (::ioctl(descriptor(), TCSBRK, 1) == -1) {
        if (errno != EINTR)
            return errno;
        if (SteadyClock::now() >= deadline)
            return ETIMEDOUT;
    }
    return 0;
}

/// Waits until at most @p most bytes are queued. TCSBRK alone would wait without end for an adapter
/// that takes no more bytes.
int SerialLine::waitForQueue(int most)
{
    int queued = queuedBytes();
    const auto deadline = sendDeadline(std::max(queued, 0), m_speed);
    while (queued > most) {
        const auto remaining = deadline - SteadyClock::now();
        if (remaining <= 0ns) {
            discardQueued();
            return ETIMEDOUT;
        }
        const auto wait =
            std::min<std::chrono::nanoseconds>(wireTime(queued - most, m_speed), remaining);
        if (!waitForLine(descriptor(), 0, wait))
            return EIO;
        queued = queuedBytes();
    }
    return queued < 0 ? EIO : 0;
}

int SerialLine::discardReceived()
{
    return ::ioctl(descriptor(), TCFLSH, TCIFLUSH) == -1 ? errno : 0;
}

/// Bytes written that have not left the machine; -1 when the line has hung up.
int SerialLine::queuedBytes() const
{
    int count = 0;
    return ::ioctl(descriptor(), TIOCOUTQ, &count) == -1 ? -1 : count;
}

/// Half a frame must not follow later, and closing must not wait for it.
void SerialLine::discardQueued()
{
    ::ioctl(descriptor(), TCFLSH, TCOFLUSH);
}

void SerialLine::fail(int error) const
{
    throw PlatformFailure::fromErrno(error, m_path);
}

} // namespace fldc
