#include "replay/Replay.h"

#include "Signals.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <fstream>
#include <poll.h>
#include <stdexcept>
#include <unistd.h>

namespace simulator {

namespace {

// A radio answers a change of speed at the new one, and restarts at its first one. A host may have
// that speed already.
constexpr milliseconds afterSpeedChange{30};
constexpr milliseconds longestSpeedChange{300};
constexpr int servingInterval = 2; // milliseconds

std::vector<Exchange> recordingIn(const std::string& path)
{
    std::ifstream log(path, std::ios::binary);
    if (!log)
        throw std::runtime_error("cannot read " + path);
    return readRecording(log);
}

// In the form of the log that it is compared with.
std::string allHex(ByteView bytes)
{
    std::string text;
    for (const std::uint8_t byte : bytes)
        text += hex(byte, 2);
    return text;
}

} // namespace

Replay::Replay(const Options& options)
    : m_exchanges(recordingIn(options.replay)), m_log(options.log),
      m_link(options.link, m_terminal.path()), m_signals(takeOverSignals())
{
    if (options.seconds)
        m_end = Clock::now() + std::chrono::duration_cast<Clock::duration>(
                                   std::chrono::duration<double>(*options.seconds));
    m_log.event("Recorded radio on " + m_terminal.path() +
                (options.link.empty() ? "" : ", linked as " + options.link));
}

Replay::~Replay()
{
    ::close(m_signals);
}

bool Replay::run()
{
    while (!m_ended && !m_departed) {
        waitForSomething();
        hear(m_terminal.read());
        const Time now = Clock::now();
        if (!m_departed)
            answer(now);
        m_ended = m_ended || (m_end && *m_end <= now) || hostHasLeft();
    }
    if (!m_departed && !isComplete())
        depart("the host sent no more");
    if (!m_departed)
        m_log.event("Replay complete: " + std::to_string(m_exchanges.size()) + " write(s)");
    m_terminal.hangUp();
    return !m_departed;
}

void Replay::waitForSomething()
{
    // Whether a host has come or left, and what is answered with a delay, is looked at often.
    std::array<pollfd, 2> sources{
        {{m_terminal.hostPresent() ? m_terminal.descriptor() : -1, POLLIN, 0},
         {m_signals, POLLIN, 0}}};
    ::poll(sources.data(), sources.size(), servingInterval);
    m_ended = (sources[1].revents & POLLIN) != 0;
}

bool Replay::hostHasLeft()
{
    return !m_terminal.hostPresent() && isComplete() && m_toSay.empty();
}

void Replay::hear(const Bytes& bytes)
{
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        m_heard.push_back(bytes[i]);
        if (isComplete())
            return depart("more than the log holds");
        const Bytes& expected = m_exchanges[m_next].sent;
        if (m_heard.back() != expected[m_heard.size() - 1]) {
            m_heard.insert(m_heard.end(), bytes.begin() + static_cast<std::ptrdiff_t>(i + 1),
                           bytes.end());
            return depart("other bytes");
        }
        if (m_heard.size() == expected.size())
            writeHeard(Clock::now());
    }
}

void Replay::writeHeard(Time now)
{
    const Exchange& exchange = m_exchanges[m_next++];
    m_log.heard(m_heard, "line " + std::to_string(exchange.line));
    m_heard.clear();
    // A host that goes on before an answer has dropped what it did not read.
    m_toSay = exchange.answer;
    m_speedToChange.reset();
    m_sayAt.reset();
    if (exchange.changesSpeed && !m_toSay.empty()) {
        m_speedToChange = m_terminal.hostSpeed();
        m_sayAt = now + longestSpeedChange;
    }
}

void Replay::answer(Time now)
{
    if (m_speedToChange && m_terminal.hostSpeed() != *m_speedToChange) {
        m_speedToChange.reset();
        m_sayAt = now + afterSpeedChange;
    }
    if (m_toSay.empty() || (m_sayAt && *m_sayAt > now))
        return;
    m_sayAt.reset();
    const std::size_t done = m_terminal.write(m_toSay);
    m_log.said(ByteView(m_toSay).first(done), {});
    m_toSay.erase(m_toSay.begin(), m_toSay.begin() + static_cast<std::ptrdiff_t>(done));
}

void Replay::depart(std::string_view what)
{
    m_departed = true;
    const std::string got = m_heard.empty() ? "nothing" : allHex(m_heard);
    if (isComplete()) {
        m_log.event("Departs behind line " + std::to_string(m_exchanges.back().line) + ": " +
                    std::string(what) + "; got " + got);
        return;
    }
    const Exchange& exchange = m_exchanges[m_next];
    const auto same =
        std::mismatch(m_heard.begin(), m_heard.end(), exchange.sent.begin(), exchange.sent.end());
    m_log.event("Departs at line " + std::to_string(exchange.line) + ", byte " +
                std::to_string(same.first - m_heard.begin() + 1) + ": " + std::string(what) +
                "; expected " + allHex(exchange.sent) + "; got " + got);
}

} // namespace simulator
