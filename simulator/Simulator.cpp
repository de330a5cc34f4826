#include "Simulator.h"

#include "FlashFile.h"
#include "Signals.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/signalfd.h>
#include <unistd.h>

namespace simulator {

namespace {

// How often it is looked whether a host has come, and at its speed.
constexpr milliseconds samplingInterval{2};

Time after(Time start, double seconds)
{
    return start +
           std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
}

} // namespace

Simulator::Simulator(const Options& options)
    : m_options(options), m_log(options.log), m_faults(options.faults), m_memory(*options.profile),
      m_line(m_terminal, options.pace, m_log),
      m_radio(*options.profile, m_faults, m_memory, m_line, m_log), m_signals(takeOverSignals()),
      m_link(options.link, m_terminal.path())
{
    if (!options.flashIn.empty())
        loadFlash(options.flashIn, m_memory);
    if (options.seconds)
        m_end = after(Clock::now(), *options.seconds);
    // The kernel may otherwise be 50 us late with every wake-up, half a byte at 115200.
    ::prctl(PR_SET_TIMERSLACK, 1UL, 0UL, 0UL, 0UL);
    m_log.event("Radio " + std::string(options.profile->radioType) + " on " + m_terminal.path() +
                (options.link.empty() ? "" : ", linked as " + options.link));
}

Simulator::~Simulator()
{
    ::close(m_signals);
}

void Simulator::run()
{
    while (!m_ended && !m_radio.isHungUp()) {
        waitForSomething();
        const Time now = Clock::now();
        handleSignals(now);
        serve(now);
    }
    m_terminal.hangUp();
    save();
}

void Simulator::waitForSomething()
{
    const Time now = Clock::now();
    Time wake = now + samplingInterval;
    for (const auto deadline : {m_line.deadline(now), m_radio.deadline(), m_end, m_powerCycleAt})
        wake = std::min(wake, deadline.value_or(wake));

    const bool hostPresent = m_terminal.hostPresent();
    const auto terminalEvents = static_cast<short>(m_line.isBlocked() ? POLLIN | POLLOUT : POLLIN);
    std::array<pollfd, 2> sources{
        {{hostPresent ? m_terminal.descriptor() : -1, terminalEvents, 0}, {m_signals, POLLIN, 0}}};
    const auto left = std::max(wake - now, Clock::duration::zero());
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(left);
    const timespec timeout{.tv_sec = seconds.count(),
                           .tv_nsec = std::chrono::nanoseconds(left - seconds).count()};
    ::ppoll(sources.data(), sources.size(), &timeout, nullptr);
}

void Simulator::serve(Time now)
{
    m_line.receive();
    while (const auto heard = m_line.next(std::max(now, Clock::now()))) {
        m_radio.hear(heard->byte, heard->at);
        if (m_radio.isHungUp())
            return;
    }
    // Only now, when everything that has arrived was heard, is the line known to be quiet.
    if (m_radio.deadline() && *m_radio.deadline() <= now)
        m_radio.wake(now);
    powerCycleInTime(now);
    m_line.transmit(Clock::now());
    m_ended = m_ended || (m_end && *m_end <= now);
}

void Simulator::powerCycleInTime(Time now)
{
    const auto seconds = m_faults.number(FaultKind::PowerCycleAfter);
    if (!seconds)
        return;
    if (m_powerCycleAt && *m_powerCycleAt <= now) {
        m_powerCycleAt = Time::max(); // once
        m_radio.powerCycle(now);
    } else if (!m_powerCycleAt && m_terminal.hostPresent()) {
        m_powerCycleAt = now + std::chrono::seconds(*seconds);
    }
}

void Simulator::handleSignals(Time now)
{
    signalfd_siginfo info{};
    while (::read(m_signals, &info, sizeof info) == static_cast<ssize_t>(sizeof info)) {
        if (info.ssi_signo == SIGUSR1)
            save();
        else if (info.ssi_signo == SIGUSR2)
            m_radio.powerCycle(now);
        else
            m_ended = true;
    }
}

void Simulator::save()
{
    if (m_options.flash.empty())
        return;
    saveFlash(m_options.flash, m_memory);
    m_log.event("Flash written to " + m_options.flash);
}

} // namespace simulator
