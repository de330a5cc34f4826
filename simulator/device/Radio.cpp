#include "device/Radio.h"

#include <utility>

namespace simulator {

namespace {

using std::chrono::operator""ms;

constexpr std::uint8_t resetByte = 0x5E;
constexpr std::uint8_t logOnByte = 0x7E;
constexpr std::uint8_t readyByte = 0x76;       // start-up byte: can be upgraded as it is
constexpr std::uint8_t wantsBootByte = 0x56;   // start-up byte: wants the boot application
constexpr std::uint8_t noBootWantedByte = '?'; // behind the identifier
const Bytes specialLogOn{0x3C, 0x5E, 0x23};

constexpr int upgradeSpeed = 19200; // bit/s, of a reset and everything after it up to a change
constexpr int f1Speed = 9600;

constexpr milliseconds startTime = 150ms;
constexpr milliseconds logOnWindow = 5000ms;
// A boot application has no length of its own. The samples end with these words; any other is over
// when the line has been quiet for longer than a busy host lets it be between two bytes, and well
// within the 2 s for which the host waits.
constexpr std::string_view bootApplicationEnd = "END OF BOOT APPLICATION\n";
constexpr milliseconds quietAfterBootApplication = 1000ms;
constexpr milliseconds bootApplicationStart = 400ms;
constexpr milliseconds intercharacterTime = 200ms;
constexpr milliseconds identifierTime = 10ms;

bool endsWith(const Bytes& bytes, std::string_view end)
{
    return bytes.size() >= end.size() && std::equal(end.rbegin(), end.rend(), bytes.rbegin());
}

} // namespace

Radio::Radio(const Profile& profile, Faults& faults, Memory& memory, Line& line, Log& log)
    : m_profile(profile), m_faults(faults), m_line(line), m_log(log),
      m_upgrade(profile, faults, memory, log)
{
    setSpeed(startingSpeed());
    if (const auto speed = faults.number(FaultKind::AlreadyInUpgradeMode)) {
        setSpeed(static_cast<int>(*speed));
        enter(State::Commanded);
    }
}

int Radio::startingSpeed() const
{
    if (m_faults.has(FaultKind::F1PowerCycle))
        return f1Speed;
    return static_cast<int>(m_faults.number(FaultKind::AnswersAt).value_or(upgradeSpeed));
}

void Radio::setSpeed(int speed)
{
    m_line.setSpeed(speed, m_faults.has(FaultKind::Deaf, static_cast<unsigned>(speed)));
}

bool Radio::isReset(std::uint8_t byte) const
{
    return byte == resetByte && !m_faults.has(FaultKind::PowerCycle);
}

bool Radio::isSilent(bool toCommand) const
{
    const auto limit = m_faults.number(FaultKind::SilentAfter);
    return limit && (toCommand ? m_commandsHeard > *limit : m_commandsHeard >= *limit);
}

void Radio::answer(const Effects& effects, const Pieces& pieces, Time at)
{
    if (effects.hangUp) {
        m_log.event("The line is pulled out");
        m_hungUp = true;
        return;
    }
    if (effects.silent) {
        m_log.event("Silent, as told");
        return;
    }
    for (const Piece& piece : effects.shape(pieces)) {
        at += piece.pause;
        m_log.said(piece.bytes, at - Clock::now());
        m_line.say(piece.bytes, at);
    }
}

// --- restarting

void Radio::powerCycle(Time now)
{
    m_log.event("Power cycle");
    restart(now, true);
}

void Radio::restart(Time at, bool powerCycled)
{
    m_line.forget();
    m_upgrade.restart();
    m_received.clear();
    m_powerCycled = powerCycled;
    Effects effects = m_faults.meet(startEvent);
    effects.silent |= isSilent(false);
    if (powerCycled && m_faults.has(FaultKind::F1PowerCycle)) {
        setSpeed(upgradeSpeed);
        enter(State::Commanded);
        m_deadline.reset();
        m_log.event("Restarts with F1 held: takes commands at once");
        answer(effects, {Piece{wordsToBytes({doneWord}), startTime}}, at);
        return;
    }
    setSpeed(startingSpeed());
    enter(State::Started);
    m_deadline = at + logOnWindow;
    const std::uint8_t startUpByte = m_profile.needsBootApplication ? wantsBootByte : readyByte;
    m_log.event("Restarts at " + std::to_string(m_line.speed()) + " with start-up byte " +
                hex(startUpByte, 2));
    answer(effects, {Piece{{startUpByte}, startTime}}, at);
}

void Radio::hear(std::uint8_t byte, Time at)
{
    switch (m_state) {
    case State::Running:
        m_log.heard({&byte, 1}, isReset(byte) ? "reset" : "ignored");
        if (isReset(byte))
            restart(at, false);
        break;
    case State::Started:
        hearLogOn(byte, at);
        break;
    case State::Loading:
        m_received.push_back(byte);
        m_deadline = at + (endsWith(m_received, bootApplicationEnd) ? bootApplicationStart
                                                                    : quietAfterBootApplication);
        break;
    case State::Commanded:
        hearCommand(byte, at);
        break;
    }
}

void Radio::wake(Time now)
{
    m_deadline.reset();
    if (m_state == State::Started) {
        m_log.event("No log-on: runs its own software");
        enter(State::Running);
    } else if (m_state == State::Loading) {
        finishLoading(now);
    } else if (m_state == State::Commanded) {
        m_log.heard(m_received, "a frame that does not go on");
        m_log.event("Refused a frame that stopped after " + std::to_string(m_received.size()) +
                    " byte(s)");
        m_received.clear();
        Effects effects;
        effects.silent = isSilent(true);
        answer(effects, UpgradeMode::refusal(FaultWord::IntercharacterTimeout).pieces, now);
    }
}

// --- logging on

void Radio::hearLogOn(std::uint8_t byte, Time at)
{
    m_received.push_back(byte);
    const bool isSpecial = std::equal(m_received.begin(), m_received.end(), specialLogOn.begin());
    if (isSpecial && m_received.size() < specialLogOn.size())
        return;
    const Bytes received = std::exchange(m_received, {});
    m_log.heard(received, isSpecial           ? "special log-on"
                          : byte == logOnByte ? "log-on"
                                              : "while starting");
    if (isSpecial || byte == logOnByte)
        logOn(isSpecial, at);
    else if (isReset(byte))
        restart(at, false);
}

void Radio::logOn(bool special, Time at)
{
    const std::string_view greeting = m_profile.greeting;
    if (special && !m_powerCycled) {
        m_log.event("Special log-on ignored: it is good only after a power cycle");
        return;
    }
    Effects effects = m_faults.meet(logOnEvent);
    effects.silent |= isSilent(false);
    Pieces pieces{Piece{Bytes(greeting.begin(), greeting.end()), identifierTime}};
    if (m_profile.needsBootApplication) {
        enter(State::Loading);
    } else {
        pieces.push_back({{noBootWantedByte}, identifierTime});
        pieces.push_back({wordsToBytes({doneWord}), identifierTime});
        enter(State::Commanded);
    }
    m_deadline.reset();
    m_log.event((special ? "Special log-on, is " : "Log-on, is ") + std::string(greeting) +
                (m_profile.needsBootApplication ? ", waits for the boot application" : ""));
    answer(effects, pieces, at);
}

void Radio::finishLoading(Time now)
{
    const Bytes application = std::exchange(m_received, {});
    // A host that begins anew sends a reset, and no boot application is one byte long.
    if (application.size() == 1 && isReset(application.front())) {
        m_log.heard(application, "reset");
        restart(now, false);
        return;
    }
    m_log.heard(application, "boot application");
    m_log.event("Boot application received: " + std::to_string(application.size()) + " bytes");
    enter(State::Commanded);
    Effects effects = m_faults.meet(bootEvent);
    effects.silent |= isSilent(false);
    answer(effects, {Piece{wordsToBytes({doneWord})}}, now);
}

// --- commands

void Radio::hearCommand(std::uint8_t byte, Time at)
{
    if (m_received.empty() && byte == resetByte) {
        m_log.heard({&byte, 1}, "reset");
        if (isReset(byte))
            restart(at, false);
        return;
    }
    m_received.push_back(byte);
    m_deadline = at + intercharacterTime;
    if (m_received.size() >= 2 && m_received.size() == 4U + 2U * m_received[1]) {
        m_deadline.reset();
        obeyFrame(at);
    }
}

void Radio::obeyFrame(Time at)
{
    const Bytes frame = std::exchange(m_received, {});
    const std::uint8_t code = frame.front();
    const ByteView body = ByteView(frame).first(frame.size() - 2);
    m_log.heard(frame, UpgradeMode::commandName(code));
    ++m_commandsHeard;
    Effects effects;
    Answer result;
    if (checksum(body) != wordAt(frame, body.size())) {
        m_log.event("Refused a frame with a bad checksum");
        result = UpgradeMode::refusal(FaultWord::BadChecksum);
    } else {
        effects = m_faults.meet(code);
        if (effects.refusal || effects.hangUp)
            result = UpgradeMode::refusal(static_cast<FaultWord>(effects.refusal.value_or(0)));
        else
            result = m_upgrade.carryOut(code, body.subspan(2));
    }
    if (effects.refusal)
        m_log.event("Refused " + hex(code, 2) + " with " + hex(*effects.refusal, 4) + ", as told");
    effects.silent |= isSilent(true);
    if (result.restart && !effects.hangUp) {
        restart(at, false);
        return;
    }
    if (result.newSpeed != 0 &&
        m_faults.has(FaultKind::IgnoresSpeed, static_cast<unsigned>(result.newSpeed)))
        effects.silent = true;
    else if (result.newSpeed != 0) {
        m_log.event("Changes to " + std::to_string(result.newSpeed));
        setSpeed(result.newSpeed);
    }
    answer(effects, result.pieces, at);
}

} // namespace simulator
