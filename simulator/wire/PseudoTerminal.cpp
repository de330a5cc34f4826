#include "wire/PseudoTerminal.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <pty.h>
#include <stdexcept>
#include <sys/inotify.h>
#include <system_error>
#include <termios.h>
#include <unistd.h>
#include <utility>

namespace simulator {

namespace {

// What the host writes is there at once, unless the system is busy. A report that comes after its
// bytes were read is forgotten then.
constexpr milliseconds longestPassage{200};

// The speeds that serial ports of all kinds have and that a radio might be sought at.
constexpr std::array<std::pair<speed_t, int>, 8> speeds{{{B1200, 1200},
                                                         {B2400, 2400},
                                                         {B4800, 4800},
                                                         {B9600, 9600},
                                                         {B19200, 19200},
                                                         {B38400, 38400},
                                                         {B57600, 57600},
                                                         {B115200, 115200}}};

[[noreturn]] void fail(const char* what)
{
    throw std::system_error(errno, std::generic_category(), what);
}

void closeAndForget(int& descriptor)
{
    if (descriptor >= 0)
        ::close(descriptor);
    descriptor = -1;
}

} // namespace

PseudoTerminal::PseudoTerminal()
{
    std::array<char, 64> name{};
    if (::openpty(&m_master, &m_slave, name.data(), nullptr, nullptr) != 0)
        fail("cannot open a pseudo-terminal");
    m_path = name.data();
    termios settings{};
    if (::tcgetattr(m_slave, &settings) != 0)
        fail("cannot read the line settings");
    ::cfmakeraw(&settings);
    if (::tcsetattr(m_slave, TCSANOW, &settings) != 0)
        fail("cannot make the line raw");
    if (::fcntl(m_master, F_SETFL, O_NONBLOCK) != 0)
        fail("cannot make the line non-blocking");
    ::fcntl(m_master, F_SETFD, FD_CLOEXEC);
    ::fcntl(m_slave, F_SETFD, FD_CLOEXEC);
    watchOpenings();
}

PseudoTerminal::~PseudoTerminal()
{
    hangUp();
}

void PseudoTerminal::watchOpenings()
{
    m_watch = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (m_watch < 0)
        return;
    // Not every system reports openings of terminals: try it, or the radio would believe for ever
    // that nobody is there.
    ::inotify_add_watch(m_watch, m_path.c_str(), IN_OPEN | IN_CLOSE | IN_MODIFY);
    const int trial = ::open(m_path.c_str(), O_RDWR | O_NOCTTY);
    takeReports();
    const bool reported = m_openings == 1;
    if (trial >= 0)
        ::close(trial);
    if (reported)
        takeReports();
    else
        closeAndForget(m_watch);
}

void PseudoTerminal::takeReports()
{
    alignas(inotify_event) std::array<char, 4096> buffer{};
    ssize_t size = 0;
    while ((size = ::read(m_watch, buffer.data(), buffer.size())) > 0) {
        for (ssize_t offset = 0; offset < size;) {
            const auto* event = reinterpret_cast<const inotify_event*>(buffer.data() + offset);
            if ((event->mask & IN_OPEN) != 0) {
                ++m_openings;
            } else if ((event->mask & IN_CLOSE) != 0 && m_openings > 0) {
                --m_openings;
            } else if ((event->mask & IN_MODIFY) != 0) {
                // Two openings at the same moment are reported as one, but who writes is there.
                m_openings = std::max(m_openings, 1);
                m_writtenAt = Clock::now();
            }
            offset += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
        }
    }
}

bool PseudoTerminal::hostPresent()
{
    if (m_watch < 0)
        return true;
    takeReports();
    return m_openings > 0;
}

bool PseudoTerminal::hasUnread()
{
    takeReports();
    return m_writtenAt && Clock::now() - *m_writtenAt < longestPassage;
}

Bytes PseudoTerminal::read()
{
    Bytes bytes;
    std::array<std::uint8_t, 4096> buffer{};
    ssize_t size = 0;
    while ((size = ::read(m_master, buffer.data(), buffer.size())) > 0)
        bytes.insert(bytes.end(), buffer.begin(), buffer.begin() + size);
    if (!bytes.empty()) {
        takeReports(); // that of these bytes, too
        m_writtenAt.reset();
    }
    return bytes;
}

std::size_t PseudoTerminal::write(ByteView bytes)
{
    const ssize_t size = ::write(m_master, bytes.data(), bytes.size());
    return size > 0 ? static_cast<std::size_t>(size) : 0;
}

int PseudoTerminal::hostSpeed() const
{
    termios settings{};
    // The master shows the slave's settings.
    if (::tcgetattr(m_master, &settings) != 0)
        return 0;
    const speed_t code = ::cfgetospeed(&settings);
    for (const auto& [known, speed] : speeds) {
        if (known == code)
            return speed;
    }
    return 0;
}

void PseudoTerminal::hangUp()
{
    closeAndForget(m_slave);
    closeAndForget(m_master);
    closeAndForget(m_watch);
}

} // namespace simulator
