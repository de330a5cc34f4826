#include "port/clsSerial.h"

#include "app/services/LogState.h"
#include "platform/IClock.h"
#include "platform/IEvents.h"
#include "platform/ISerialControl.h"
#include "platform/PlatformFailure.h"
#include "port/Cancellation.h"
#include "port/ReplyText.h"
#include "session/LooksLike.h"
#include "shared/HexText.h"
#include "shared/LastError.h"

#include <algorithm>
#include <array>
#include <limits>
#include <span>
#include <utility>

namespace fldc {

using namespace std::chrono_literals;

namespace {

constexpr std::uint8_t resetByte = 0x5E;
constexpr auto resetTimeout = 2000ms;
constexpr int maximumBusyMarks = 50;
constexpr int unlimited = std::numeric_limits<int>::max();

// The idle time-out restarts with every byte, so that a device that never falls silent could hold a
// read for ever. No reply is nearly as long.
constexpr auto longestReply = 60s;
constexpr int largestReply = 64 * 1024;
// No flash takes longer to be erased.
constexpr auto longestBusy = 15min;

// Bytes taken before events are served again.
constexpr int longestRun = 16;

/// What a failure of the control means for an operation of the port.
struct FailureMeaning {
    SerialFailure failure;
    Code code;
};

constexpr std::array openFailures{
    FailureMeaning{SerialFailure::PortAlreadyOpen, Code::PortInUse},
    FailureMeaning{SerialFailure::InvalidPortNumber, Code::PortDoesNotExist},
};

constexpr std::array closeFailures{
    FailureMeaning{SerialFailure::DeviceNotOpen, Code::Success},
    FailureMeaning{SerialFailure::OnlyWhilePortOpen, Code::Success},
    FailureMeaning{SerialFailure::PortAlreadyOpen, Code::PortInUse},
};

constexpr std::array writeFailures{
    FailureMeaning{SerialFailure::OnlyWhilePortOpen, Code::PortInUse},
    FailureMeaning{SerialFailure::PortAlreadyOpen, Code::PortInUse},
    FailureMeaning{SerialFailure::InvalidPortNumber, Code::PortDoesNotExist},
};

// Inside a catch block: records what the failure in flight means; any other one is 15.
void recordFailure(std::span<const FailureMeaning> meanings)
{
    const auto number = static_cast<SerialFailure>(currentFailure().number());
    const auto found = std::ranges::find(meanings, number, &FailureMeaning::failure);
    lastError().set(found == meanings.end() ? Code::PortUnspecified : found->code);
}

} // namespace

clsSerial::clsSerial(const Platform& platform, std::shared_ptr<const Cancellation> cancellation,
                     std::function<bool()> userPresent,
                     std::shared_ptr<const session::Teller> teller)
    : m_platform(platform), m_cancellation(std::move(cancellation)),
      m_userPresent(std::move(userPresent)), m_teller(std::move(teller)), m_timer(m_platform.timers)
{
}

QString clsSerial::PortName() const
{
    return QString::number(m_control ? m_control->commPort() : 0);
}

// Throws when the port was given none.
const std::shared_ptr<ISerialControl>& clsSerial::control() const
{
    if (!m_control)
        throw PlatformFailure(FailureNumber::ObjectNotSet);
    return m_control;
}

void clsSerial::setPortType(std::shared_ptr<ISerialControl> control)
{
    m_control = std::move(control);
    if (m_control)
        m_control->setGiveUp([wish = m_cancellation] { return wish->requested(); });
}

void clsSerial::OpenPort()
{
    if (cancelled())
        return;
    try {
        const auto line = control(); // held, here and below: it may serve events
        line->setPortOpen(true);
        lastError().clear();
        tellOpened(*line);
    } catch (...) {
        recordFailure(openFailures);
    }
    (void)cancelled(); // meanwhile
}

void clsSerial::ClosePort()
{
    try {
        const auto line = control();
        if (line->portOpen())
            line->setPortOpen(false);
        lastError().clear();
    } catch (...) {
        recordFailure(closeFailures);
    }
}

void clsSerial::SetPortParameters(const QString& strBaudRate, std::int32_t comInputMode)
{
    if (cancelled())
        return;
    ClosePort();
    if (!lastError().ok())
        return;
    try {
        const auto line = control();
        line->setSettings(strBaudRate + QStringLiteral(",n,8,1"));
        line->setInputMode(comInputMode);
        line->setInputLen(1);
    } catch (...) {
        recordFailure({});
        return;
    }
    OpenPort();
}

void clsSerial::WriteBinary(const QByteArray& bytes)
{
    if (cancelled())
        return;
    try {
        const auto line = control();
        tellDiscarded(*line);
        line->setInBufferCount(0);
        line->output(bytes);
        m_lastSent = bytes;
        logBytes(LogEntryType::Sent, bytes);
        lastError().clear();
    } catch (...) {
        recordFailure(writeFailures);
    }
}

void clsSerial::ResetRadio()
{
    WriteBinary(QByteArray(1, static_cast<char>(resetByte)));
}

QString clsSerial::ReadBinary(std::int16_t intTimeout, const QString& strExist,
                              bool* blnTerminatorFound)
{
    // The radio's time is counted; a network's comes to it, once for every question and answer.
    const milliseconds timeout = milliseconds(intTimeout) + (m_control ? m_control->delay() : 0ms);
    QString text;
    bool finished = false;
    if (strExist.size() == 4) {
        ReplyWords words(strExist);
        finished = readReply(words, timeout, unlimited);
        text = words.text();
        if (finished && words.terminated() && blnTerminatorFound != nullptr)
            *blnTerminatorFound = true;
    } else {
        ReplyBytes bytes(strExist);
        finished = readReply(bytes, timeout, maximumBusyMarks);
        text = bytes.text();
    }
    if (!finished)
        return {};
    logHexText(LogEntryType::Received, text);
    return text;
}

// Reads until the reply is finished. The outcome is this read's own, whatever the events that it
// serves record meanwhile.
template <class Reply>
bool clsSerial::readReply(Reply& reply, milliseconds timeout, int busyMarksAllowed)
{
    if (cancelled() || !m_timer.StartTimer(timeout))
        return false;
    bool finished = false;
    try {
        finished = receive(reply, timeout, busyMarksAllowed);
    } catch (...) {
        recordFailure({});
    }
    m_timer.StopTimer();
    m_lastReadSilent = reply.received().isEmpty();
    if (finished)
        lastError().clear();
    else
        tellUnread(reply.received());
    return finished;
}

void clsSerial::tellOpened(const ISerialControl& line) const
{
    if (!m_teller->heard())
        return;
    const QString speed = line.settings().section(u',', 0, 0);
    m_teller->tell(session::LineOpened{line.commPort(), speed.toUInt()});
}

// Takes what is about to be thrown away; a line that can't be read says so to the write.
void clsSerial::tellDiscarded(ISerialControl& line) const
{
    if (!m_teller->heard())
        return;
    QByteArray bytes;
    while (bytes.size() < session::unexpectedLimit && line.inBufferCount() > 0)
        bytes += line.input();
    if (!bytes.isEmpty())
        m_teller->tell(session::unexpected(bytes, m_lastSent));
}

// What a cancelled read had received says nothing about the line.
void clsSerial::tellUnread(const QString& received) const
{
    if (!m_teller->heard() || received.isEmpty() || m_cancellation->requested())
        return;
    const QByteArray bytes = hexToBytes(QStringView(received).left(2 * session::unexpectedLimit));
    m_teller->tell(session::unexpected(bytes, m_lastSent));
}

// The time-out is counted in whole periods: it fails when one passes without a byte, or whatever
// comes where bytes don't keep the wait alive. A busy mark starts the period anew.
template <class Reply>
bool clsSerial::receive(Reply& reply, milliseconds timeout, int busyMarksAllowed)
{
    const auto line = control(); // held: a client may give the port another one meanwhile
    const auto start = m_platform.clock.monotonic();
    auto latestBusy = start;
    int bytes = 0; // since then
    bool dataSeen = false;
    int busyMarks = 0;
    while (!reply.finished()) {
        const auto byte = nextByte(*line);
        if (cancelled())
            return false;
        dataSeen |= byte.has_value();
        const bool busy = byte && reply.take(*byte);
        const auto now = m_platform.clock.monotonic();
        if (busy) {
            ++busyMarks;
            latestBusy = now;
            bytes = 0;
        } else if (byte) {
            ++bytes;
        }
        const bool noReply = now - latestBusy >= longestReply || bytes >= largestReply;
        const bool tooBusy = now - start >= longestBusy && !userPresent();
        if (busyMarks > busyMarksAllowed || (!reply.finished() && (noReply || tooBusy)))
            return fail(Code::MaximumTimeExceeded);
        const bool expired = m_timer.blnTimerExpired();
        if (expired && !(std::exchange(dataSeen, false) && Reply::bytesKeepAlive))
            return fail(Code::NoResponse);
        if ((busy || expired) && !m_timer.StartTimer(timeout))
            return false;
    }
    return true;
}

// One pass of a wait. Blocks only when there is nothing to do; takes bytes that have arrived
// together in runs, and serves events between the runs.
std::optional<std::uint8_t> clsSerial::nextByte(ISerialControl& line)
{
    const bool waiting = line.inBufferCount() > 0;
    if (waiting && m_runLeft > 0) {
        --m_runLeft;
    } else {
        m_runLeft = longestRun;
        if (waiting || m_timer.blnTimerExpired())
            m_platform.events.processPending();
        else
            m_platform.events.waitForEvents();
    }
    if (line.inBufferCount() == 0)
        return std::nullopt;
    const QByteArray bytes = line.input();
    return bytes.isEmpty() ? std::nullopt : std::optional(static_cast<std::uint8_t>(bytes.front()));
}

void clsSerial::WaitForReset(bool& blnUARequired, bool blnAFAF)
{
    StartUpText text(blnAFAF);
    const auto delay = m_control ? m_control->delay() : 0ms;
    if (readReply(text, resetTimeout + delay, maximumBusyMarks))
        blnUARequired = text.applicationRequired();
    else if (lastError().code() != Code::UserCancelled)
        lastError().set(Code::RadioDidNotReset); // whatever kept it from being heard
}

// After a cancellation nothing more goes to the radio and nothing is waited for.
bool clsSerial::cancelled() const
{
    if (!m_cancellation->requested())
        return false;
    lastError().set(Code::UserCancelled);
    return true;
}

} // namespace fldc
