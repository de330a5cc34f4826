#include "wire/PseudoTerminal.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <system_error>
#include <termios.h>
#include <unistd.h>
#include <utility>

namespace simulator {

namespace {

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

} // namespace

PseudoTerminal::PseudoTerminal()
{
    int slave = -1;
    std::array<char, 64> name{};
    if (::openpty(&m_master, &slave, name.data(), nullptr, nullptr) != 0)
        fail("cannot open a pseudo-terminal");
    m_path = name.data();
    // The settings last as long as the master. A terminal that is not raw would echo what the radio
    // says to the radio.
    termios settings{};
    bool ready = ::tcgetattr(slave, &settings) == 0;
    ::cfmakeraw(&settings);
    ready = ready && ::tcsetattr(slave, TCSANOW, &settings) == 0;
    // Nobody but hosts has the slave open, so that the master shows whether one has.
    ::close(slave);
    if (!ready)
        fail("cannot make the line raw");
    if (::fcntl(m_master, F_SETFL, O_NONBLOCK) != 0)
        fail("cannot make the line non-blocking");
    ::fcntl(m_master, F_SETFD, FD_CLOEXEC);
}

PseudoTerminal::~PseudoTerminal()
{
    hangUp();
}

bool PseudoTerminal::hostPresent() const
{
    pollfd line{m_master, 0, 0};
    return ::poll(&line, 1, 0) >= 0 && (line.revents & POLLHUP) == 0;
}

Bytes PseudoTerminal::read()
{
    Bytes bytes;
    std::array<std::uint8_t, 4096> buffer{};
    ssize_t size = 0;
    while ((size = ::read(m_master, buffer.data(), buffer.size())) > 0)
        bytes.insert(bytes.end(), buffer.begin(), buffer.begin() + size);
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
    if (m_master >= 0)
        ::close(m_master);
    m_master = -1;
}

} // namespace simulator
