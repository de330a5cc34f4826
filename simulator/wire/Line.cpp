#include "wire/Line.h"

#include <algorithm>

namespace simulator {

namespace {

std::string speedText(int speed)
{
    return speed == 0 ? "another speed" : std::to_string(speed);
}

// In the middle of a long sequence the line is served this often; its last byte is served on time.
constexpr milliseconds servingInterval{2};

// Shorter than the 2 s that hosts wait for a start-up byte: one that goes on at another speed finds
// the radio's byte lost, as it would be.
constexpr milliseconds patience{1000};
// A host that has just come may still throw away what it finds on the line.
constexpr milliseconds settling{200};

Time wakeFor(const std::deque<Line::TimedByte>& queue, Time now)
{
    return std::min(queue.back().at, std::max(queue.front().at, now + servingInterval));
}

} // namespace

void Line::setSpeed(int speed, bool deaf)
{
    m_speed = speed;
    m_deaf = deaf;
    m_patientUntil = Clock::now() + patience;
    m_hostReadyAt = {};
}

Clock::duration Line::byteTime() const
{
    constexpr std::int64_t bitsPerByte = 10; // start bit, eight data bits, stop bit
    if (!m_paced)
        return Clock::duration::zero();
    return std::chrono::nanoseconds(bitsPerByte * 1'000'000'000 / m_speed);
}

Bytes Line::takeFromHost()
{
    Bytes bytes = m_terminal.read();
    for (int speed = 0; (speed = m_terminal.hostSpeed()) != m_sampledSpeed;) {
        m_sampledSpeed = speed;
        const Bytes more = m_terminal.read(); // written before the change, too
        bytes.insert(bytes.end(), more.begin(), more.end());
    }
    return bytes;
}

void Line::receive()
{
    const int before = m_sampledSpeed;
    const Bytes bytes = takeFromHost();
    if (bytes.empty())
        return;
    if (m_deaf || (before != m_speed && m_sampledSpeed != m_speed)) {
        const bool onlyDeaf = m_sampledSpeed == m_speed;
        m_log.event("Not heard: " + std::to_string(bytes.size()) + " byte(s) at " +
                    speedText(m_sampledSpeed) + ", the radio " +
                    (onlyDeaf ? "is deaf to it" : "listens at " + speedText(m_speed)));
        m_log.heard(bytes, "not heard");
        return;
    }
    Time at = std::max(Clock::now(), m_lastHeard);
    for (const std::uint8_t byte : bytes)
        m_heard.push_back({byte, at += byteTime()});
    m_lastHeard = at;
}

std::optional<Line::TimedByte> Line::next(Time now)
{
    if (m_heard.empty() || m_heard.front().at > now)
        return std::nullopt;
    const TimedByte byte = m_heard.front();
    m_heard.pop_front();
    return byte;
}

void Line::say(ByteView bytes, Time notBefore)
{
    Time at = std::max(notBefore, m_lastSaid);
    for (const std::uint8_t byte : bytes)
        m_toSay.push_back({byte, at += byteTime()});
    m_lastSaid = at;
}

void Line::forget()
{
    m_toSay.clear();
    m_lastSaid = {};
}

std::string Line::obstacle() const
{
    if (!m_terminal.hostPresent())
        return " while nobody has the line open";
    if (m_deaf)
        return ", which does not get through";
    const int hostSpeed = m_terminal.hostSpeed();
    return hostSpeed == m_speed ? "" : " while the host listens at " + speedText(hostSpeed);
}

bool Line::waitsForHost(const std::string& obstacle, Time now)
{
    if (!obstacle.empty() && !m_deaf && now < m_patientUntil) {
        if (now >= m_hostReadyAt)
            m_log.event("Waits to speak at " + speedText(m_speed) + obstacle);
        m_hostReadyAt = now + settling;
    }
    return now < m_hostReadyAt;
}

void Line::transmit(Time now)
{
    Bytes due;
    for (const TimedByte& byte : m_toSay) {
        if (byte.at > now)
            break;
        due.push_back(byte.byte);
    }
    m_blocked = false;
    if (due.empty())
        return;
    const std::string obstacle = this->obstacle();
    if (waitsForHost(obstacle, now))
        return;
    std::size_t done = due.size();
    if (!obstacle.empty()) {
        m_log.event("Lost: " + std::to_string(due.size()) + " byte(s) said at " +
                    speedText(m_speed) + obstacle);
    } else {
        m_patientUntil = {};
        done = m_terminal.write(due);
        m_blocked = done < due.size();
    }
    m_toSay.erase(m_toSay.begin(), m_toSay.begin() + static_cast<std::ptrdiff_t>(done));
}

std::optional<Time> Line::deadline(Time now) const
{
    std::optional<Time> earliest;
    if (!m_heard.empty())
        earliest = wakeFor(m_heard, now);
    if (!m_toSay.empty() && !m_blocked)
        earliest = std::min(earliest.value_or(Time::max()),
                            std::max(wakeFor(m_toSay, now), m_hostReadyAt));
    return earliest;
}

} // namespace simulator
