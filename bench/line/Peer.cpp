#include "line/Peer.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <thread>

#include <csignal>
#include <poll.h>
#include <pty.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

namespace fldc {

namespace {

using Clock = std::chrono::steady_clock;

Clock::duration wireTime(std::size_t bytes)
{
    return std::chrono::duration_cast<Clock::duration>(
        std::chrono::duration<double>(static_cast<double>(bytes) * byteTime));
}

// Reads one frame: code, number of words, words, checksum. Returns its size, 0 at the end.
std::size_t readFrame(int line, Clock::time_point& begin)
{
    std::array<std::uint8_t, 514> frame{};
    std::size_t have = 0;
    std::size_t size = 4;
    while (have < size) {
        pollfd ready{line, POLLIN, 0};
        poll(&ready, 1, -1);
        const ssize_t count = read(line, frame.data() + have, size - have);
        if (count <= 0 && errno != EAGAIN)
            return 0;
        if (have == 0)
            begin = Clock::now();
        have += static_cast<std::size_t>(count < 0 ? 0 : count);
        if (have >= 2)
            size = 4 + 2 * std::size_t{frame[1]};
    }
    return size;
}

[[noreturn]] void answer(int line, Peer::Pace pace)
{
    constexpr std::array<std::uint8_t, 2> done{0xAF, 0xAF};
    for (;;) {
        Clock::time_point begin;
        const std::size_t size = readFrame(line, begin);
        if (size == 0)
            std::_Exit(0);
        if (pace == Peer::Pace::Silent)
            continue;
        if (pace == Peer::Pace::Line115200)
            std::this_thread::sleep_until(begin + wireTime(size + done.size()));
        if (write(line, done.data(), done.size()) != static_cast<ssize_t>(done.size()))
            std::_Exit(1);
    }
}

} // namespace

Peer::Peer(Pace pace)
{
    std::array<char, 64> name{};
    if (openpty(&m_master, &m_slave, name.data(), nullptr, nullptr) != 0)
        std::abort();
    termios raw{};
    tcgetattr(m_slave, &raw);
    cfmakeraw(&raw);
    tcsetattr(m_slave, TCSANOW, &raw);
    m_path = QString::fromLatin1(name.data());
    m_process = fork();
    if (m_process == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        prctl(PR_SET_TIMERSLACK, 1UL);
        answer(m_master, pace);
    }
}

Peer::~Peer()
{
    kill(m_process, SIGKILL);
    waitpid(m_process, nullptr, 0);
    close(m_master);
    close(m_slave);
}

} // namespace fldc
