#include "platform/qt/serial/SerialControl.h"

#include "platform/IPortListing.h"
#include "platform/RemoteAddress.h"
#include "platform/qt/remote/RemoteLine.h"
#include "platform/qt/serial/SerialLine.h"

#include <QTimer>

#include <algorithm>
#include <optional>
#include <utility>

namespace fldc {

namespace {

constexpr qsizetype receiveLimit = 65'536;
constexpr int binaryInput = 1;

PlatformFailure invalidSetting(const QString& setting, const QString& value)
{
    return {FailureNumber::InvalidArgument,
            QStringLiteral("invalid ") + setting + QStringLiteral(" of a serial port: ") + value};
}

/// The speed in "19200,n,8,1"; nothing for any other form.
std::optional<std::uint32_t> parseSettings(const QString& settings)
{
    constexpr QStringView frame = u",n,8,1";
    if (!settings.endsWith(frame, Qt::CaseInsensitive))
        return std::nullopt;
    const QStringView digits = QStringView(settings).chopped(frame.size());
    const bool allDigits =
        std::ranges::all_of(digits, [](QChar c) { return c >= u'0' && c <= u'9'; });
    const std::uint32_t speed = allDigits ? digits.toUInt() : 0;
    return speed > 0 ? std::optional(speed) : std::nullopt;
}

} // namespace

/// A step that may serve events: while it does, nobody opens, closes or changes the line.
class SerialControl::Step {
public:
    explicit Step(SerialControl& control) : m_control(control)
    {
        if (control.m_inStep)
            throw serialFailure(SerialFailure::PortAlreadyOpen, control.m_devicePath);
        control.m_inStep = true;
    }
    ~Step() { m_control.m_inStep = false; }
    Step(const Step&) = delete;
    Step& operator=(const Step&) = delete;

private:
    SerialControl& m_control;
};

SerialControl::SerialControl(IPortListing& ports, IEvents& events)
    : m_ports(ports), m_events(events)
{
}

SerialControl::~SerialControl()
{
    if (m_line && m_lostError == 0)
        m_line->drainLast();
}

void SerialControl::setCommPort(int number)
{
    if (m_line || m_inStep)
        throw serialFailure(SerialFailure::PortAlreadyOpen, m_devicePath);
    m_parked.reset();
    m_commPort = number;
    m_devicePath.clear();
}

void SerialControl::setPortOpen(bool openIt)
{
    const Step step(*this);
    if (openIt)
        open();
    else
        close();
}

void SerialControl::open()
{
    if (m_line)
        throw serialFailure(SerialFailure::PortAlreadyOpen, m_devicePath);
    const QString path = m_devicePath.isEmpty() ? m_ports.devicePath(m_commPort) : m_devicePath;
    if (path.isEmpty())
        throw serialFailure(SerialFailure::InvalidPortNumber,
                            QStringLiteral("COM") + QString::number(m_commPort));
    try {
        connectLine(path);
    } catch (const PlatformFailure& failure) {
        if (isRemote(path) && m_complaint && failure.number() != ECANCELED)
            m_complaint(failure.description());
        throw;
    }
    m_devicePath = path;
}

void SerialControl::connectLine(const QString& text)
{
    auto line = lineTo(text);
    try {
        line->configure(m_speed);
    } catch (...) {
        park(std::move(line));
        throw;
    }
    line->watch([this] { receive(*m_line); });
    m_line = std::move(line);
}

/// The one place where the text of a port decides what its line is.
std::unique_ptr<ILine> SerialControl::lineTo(const QString& text)
{
    if (const auto parked = std::exchange(m_parked, nullptr); parked && *parked)
        return std::move(*parked);
    if (isRemote(text))
        return std::make_unique<RemoteLine>(text, m_events, m_giveUp);
    return std::make_unique<SerialLine>(text);
}

/// Changing the speed closes and opens the port. What is reopened before events are served has
/// never been away: a server drops its end's control lines when its client leaves, and lets in the
/// next.
void SerialControl::park(std::unique_ptr<ILine> line)
{
    if (!line->outlivesReopening())
        return;
    line->setWatching(false);
    m_parked = std::make_shared<std::unique_ptr<ILine>>(std::move(line));
    QTimer::singleShot(0, [parked = std::weak_ptr(m_parked)] {
        if (const auto held = parked.lock())
            held->reset();
    });
}

void SerialControl::close()
{
    if (!m_line)
        throw serialFailure(SerialFailure::DeviceNotOpen, m_devicePath);
    const int error = m_lostError == 0 ? m_line->drain() : m_lostError;
    auto line = std::exchange(m_line, nullptr);
    m_received.clear();
    if (std::exchange(m_lostError, 0) == 0 && error == 0)
        park(std::move(line));
    // A hang-up is no reason for closing to fail, but a line that works and took nothing more is:
    // the radio has not seen the end of what was written.
    if (error == ETIMEDOUT)
        throw PlatformFailure::fromErrno(error, m_devicePath);
}

void SerialControl::setSettings(const QString& settings)
{
    const auto speed = parseSettings(settings);
    if (!speed)
        throw invalidSetting(QStringLiteral("line setting"), settings);
    if (m_line) {
        const Step step(*this);
        ILine& line = liveLine();
        if (const int error = line.drain())
            fail(error);
        line.configure(*speed);
    }
    m_speed = *speed;
    m_settings = settings;
}

void SerialControl::setInputMode(int mode)
{
    if (mode != binaryInput)
        throw invalidSetting(QStringLiteral("input mode"), QString::number(mode));
}

void SerialControl::setInputLen(int bytes)
{
    if (bytes < 1)
        throw invalidSetting(QStringLiteral("input length"), QString::number(bytes));
    m_inputLen = bytes;
}

int SerialControl::inBufferCount()
{
    ILine& line = openLine();
    if (m_received.isEmpty())
        receive(line);
    if (m_received.isEmpty() && m_lostError != 0)
        fail(m_lostError);
    return static_cast<int>(m_received.size());
}

void SerialControl::setInBufferCount(int count)
{
    if (count != 0)
        throw invalidSetting(QStringLiteral("input count"), QString::number(count));
    m_received.clear();
    if (const int error = liveLine().discardReceived())
        fail(error);
    m_line->setWatching(true);
}

QByteArray SerialControl::input()
{
    ILine& line = openLine();
    if (m_received.isEmpty())
        receive(line);
    if (m_received.isEmpty() && m_lostError != 0)
        fail(m_lostError);
    QByteArray bytes = m_received.left(m_inputLen);
    m_received.remove(0, bytes.size());
    if (m_lostError == 0 && m_received.size() < receiveLimit)
        m_line->setWatching(true);
    return bytes;
}

void SerialControl::output(const QByteArray& bytes)
{
    const Step step(*this);
    if (const int error = liveLine().write(bytes))
        fail(error);
}

std::chrono::milliseconds SerialControl::delay() const
{
    return m_line ? m_line->delay() : std::chrono::milliseconds(0);
}

ILine& SerialControl::openLine()
{
    if (!m_line)
        throw serialFailure(SerialFailure::OnlyWhilePortOpen, m_devicePath);
    return *m_line;
}

ILine& SerialControl::liveLine()
{
    ILine& line = openLine();
    if (m_lostError != 0)
        fail(m_lostError);
    return line;
}

/// Takes over what has arrived. Also called by the notifier, so that a wait that nobody reads in
/// does not spin on bytes that lie ready.
void SerialControl::receive(ILine& line)
{
    if (m_lostError != 0)
        return;
    if (const int error = line.receive(m_received, receiveLimit - m_received.size()))
        lineLost(error);
    else if (m_received.size() >= receiveLimit)
        m_line->setWatching(false);
}

/// A notifier on a line that hung up would fire without end.
void SerialControl::lineLost(int error)
{
    m_lostError = error;
    m_line->setWatching(false);
}

/// Throws @p error. A time-out leaves the line alive; after anything else it is lost.
void SerialControl::fail(int error)
{
    if (error != ETIMEDOUT)
        lineLost(error);
    throw PlatformFailure::fromErrno(error, m_devicePath);
}

} // namespace fldc
