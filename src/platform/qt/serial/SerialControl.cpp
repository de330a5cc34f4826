#include "platform/qt/serial/SerialControl.h"

#include "platform/IPortListing.h"
#include "platform/qt/CallbackGuard.h"

#include <algorithm>
#include <optional>

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

SerialControl::SerialControl(IPortListing& ports) : m_ports(ports) {}

SerialControl::~SerialControl()
{
    if (m_line && m_lostError == 0)
        static_cast<void>(m_line->drain());
}

void SerialControl::setCommPort(int number)
{
    if (m_line)
        throw serialFailure(SerialFailure::PortAlreadyOpen, m_devicePath);
    m_commPort = number;
    m_devicePath.clear();
}

void SerialControl::setPortOpen(bool openIt)
{
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
    auto line = std::make_unique<SerialLine>(path);
    line->configure(m_speed);
    m_notifier = std::make_unique<QSocketNotifier>(line->descriptor(), QSocketNotifier::Read);
    QObject::connect(m_notifier.get(), &QSocketNotifier::activated, m_notifier.get(),
                     [this] { callGuarded([this] { receive(*m_line); }); });
    m_line = std::move(line);
    m_devicePath = path;
}

void SerialControl::close()
{
    if (!m_line)
        throw serialFailure(SerialFailure::DeviceNotOpen, m_devicePath);
    const int error = m_lostError == 0 ? m_line->drain() : m_lostError;
    m_notifier.reset();
    m_line.reset();
    m_received.clear();
    m_lostError = 0;
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
        SerialLine& line = liveLine();
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
    SerialLine& line = openLine();
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
    m_notifier->setEnabled(true);
}

QByteArray SerialControl::input()
{
    SerialLine& line = openLine();
    if (m_received.isEmpty())
        receive(line);
    if (m_received.isEmpty() && m_lostError != 0)
        fail(m_lostError);
    QByteArray bytes = m_received.left(m_inputLen);
    m_received.remove(0, bytes.size());
    if (m_lostError == 0 && m_received.size() < receiveLimit)
        m_notifier->setEnabled(true);
    return bytes;
}

void SerialControl::output(const QByteArray& bytes)
{
    if (const int error = liveLine().write(bytes))
        fail(error);
}

SerialLine& SerialControl::openLine()
{
    if (!m_line)
        throw serialFailure(SerialFailure::OnlyWhilePortOpen, m_devicePath);
    return *m_line;
}

SerialLine& SerialControl::liveLine()
{
    SerialLine& line = openLine();
    if (m_lostError != 0)
        fail(m_lostError);
    return line;
}

/// Takes over what has arrived. Also called by the notifier, so that a wait that nobody reads in
/// does not spin on bytes that lie ready.
void SerialControl::receive(SerialLine& line)
{
    if (m_lostError != 0)
        return;
    if (const int error = line.receive(m_received, receiveLimit - m_received.size()))
        lineLost(error);
    else if (m_received.size() >= receiveLimit)
        m_notifier->setEnabled(false);
}

/// A notifier on a line that hung up would fire without end.
void SerialControl::lineLost(int error)
{
    m_lostError = error;
    m_notifier->setEnabled(false);
}

/// Throws @p error. A time-out leaves the line alive; after anything else it is lost.
void SerialControl::fail(int error)
{
    if (error != ETIMEDOUT)
        lineLost(error);
    throw PlatformFailure::fromErrno(error, m_devicePath);
}

} // namespace fldc
