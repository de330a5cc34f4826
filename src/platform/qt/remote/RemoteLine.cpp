#include "platform/qt/remote/RemoteLine.h"

#include "platform/IEvents.h"
#include "platform/ISerialControl.h"
#include "platform/PlatformFailure.h"
#include "platform/RemoteAddress.h"
#include "platform/qt/CallbackGuard.h"
#include "platform/qt/remote/ComPort.h"

#include <QNetworkProxy>
#include <QTimer>
#include <QtEndian>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <utility>

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

namespace fldc {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto connectLimit = 10s;
constexpr auto optionsLimit = 5s;
constexpr auto answerLimit = 3s;
constexpr auto suspendLimit = 5s;
constexpr auto longestDelay = 5000ms;

constexpr qsizetype receiveLimit = 65'536;
constexpr qsizetype sendLimit = 4096; ///< what the system may have to take over later
constexpr qsizetype longestWords = 200;
/// A caller begins to wait for the answer when write() returns, so that no more than a frame may
/// still have to go down the line.
constexpr int mostQueued = 512;

std::chrono::nanoseconds wireTime(std::int64_t bytes, std::uint32_t speed)
{
    return bytes * std::chrono::nanoseconds(10s) / std::max(speed, 1U);
}

QByteArray speedValue(std::uint32_t speed)
{
    QByteArray value(4, '\0');
    qToBigEndian(speed, value.data());
    return value;
}

/// A peer that is gone without a word is noticed: after 10 s of silence it is asked every 5 s, and
/// given up after three questions; the same for data that it does not acknowledge.
void keepAlive(QTcpSocket& socket)
{
    socket.setSocketOption(QAbstractSocket::LowDelayOption, 1);
    socket.setSocketOption(QAbstractSocket::KeepAliveOption, 1);
    const auto descriptor = static_cast<int>(socket.socketDescriptor());
    constexpr std::array<std::pair<int, int>, 4> options{{
        {TCP_KEEPIDLE, 10}, {TCP_KEEPINTVL, 5}, {TCP_KEEPCNT, 3}, {TCP_USER_TIMEOUT, 25'000}, // ms
    }};
    for (const auto& [option, value] : options)
        ::setsockopt(descriptor, IPPROTO_TCP, option, &value, sizeof value);
}

/// A server that waits with the radio's reply until its last segment is acknowledged (Nagle's
/// algorithm) gets the acknowledgement now, not in 40 ms. The system forgets the wish, so it is
/// repeated with everything that comes.
void acknowledgeAtOnce(const QTcpSocket& socket)
{
    constexpr int on = 1;
    ::setsockopt(static_cast<int>(socket.socketDescriptor()), IPPROTO_TCP, TCP_QUICKACK, &on,
                 sizeof on);
}

/// Before there is a connection a name or a place that is not there is a device that is missing.
int errorOf(QAbstractSocket::SocketError error)
{
    switch (error) {
    case QAbstractSocket::HostNotFoundError:
    case QAbstractSocket::ConnectionRefusedError:
        return ENODEV;
    case QAbstractSocket::SocketTimeoutError:
        return EHOSTUNREACH;
    default:
        return EIO;
    }
}

} // namespace

RemoteLine::RemoteLine(const QString& text, IEvents& events, std::function<bool()> giveUp)
    : m_text(text), m_events(events), m_giveUp(std::move(giveUp))
{
    QObject::connect(&m_socket, &QTcpSocket::readyRead, &m_socket,
                     [this] { callGuarded([this] { take(); }); });
    QObject::connect(&m_socket, &QTcpSocket::errorOccurred, &m_socket, [this](auto error) {
        m_errorText = m_socket.errorString();
        callGuarded([this, error] { lose(errorOf(error)); });
    });
    connectTo(text);
    send(m_options.offer());
    const auto settled = [this] { return m_options.agreed() || m_options.refused(); };
    if (const int error = await(optionsLimit, settled, true))
        failOpening(error == ETIMEDOUT ? EPROTO : error);
    if (m_options.refused())
        failOpening(EPROTO);
}

RemoteLine::~RemoteLine()
{
    m_socket.disconnect();
    m_socket.disconnectFromHost(); // what was written still leaves
}

void RemoteLine::connectTo(const QString& text)
{
    const auto address = remoteAddress(text);
    if (!address)
        failOpening(ENODEV);
    m_socket.setProxy(QNetworkProxy::NoProxy);
    m_socket.setReadBufferSize(receiveLimit);
    m_socket.connectToHost(address->host, address->port);
    const auto connected = [this] { return m_socket.state() == QTcpSocket::ConnectedState; };
    if (const int error = await(connectLimit, connected, true))
        failOpening(error);
    keepAlive(m_socket);
}

/// Throws what @p error means for the opening of the line.
void RemoteLine::failOpening(int error) const
{
    const QString words = QString::fromLatin1(m_words).simplified();
    if (words.contains("in use"_L1, Qt::CaseInsensitive))
        throw PlatformFailure(static_cast<int>(SerialFailure::PortAlreadyOpen),
                              m_text + u": "_s + words);
    if (error == ENODEV)
        throw PlatformFailure(static_cast<int>(SerialFailure::InvalidPortNumber),
                              m_text + u": "_s +
                                  (m_errorText.isEmpty() ? u"no such address"_s : m_errorText));
    if (error == EPROTO)
        throw PlatformFailure(error,
                              m_text + u": the server offers no serial line (RFC 2217) "_s + words);
    throw PlatformFailure::fromErrno(error, words.isEmpty() ? m_text : m_text + u": "_s + words);
}

/// Serves events until @p done, the loss of the line (its errno) or the end of @p longest
/// (ETIMEDOUT).
int RemoteLine::await(milliseconds longest, const std::function<bool()>& done, bool mayGiveUp)
{
    QTimer limit;
    limit.setSingleShot(true);
    limit.start(longest);
    while (!done()) {
        if (m_error != 0)
            return m_error;
        if (mayGiveUp && m_giveUp && m_giveUp())
            return ECANCELED;
        if (!limit.isActive())
            return ETIMEDOUT;
        m_events.waitForEvents();
    }
    return 0;
}

void RemoteLine::configure(std::uint32_t speed)
{
    if (speed == m_speed) // reopened as it was
        return;
    m_speed = 0;
    const auto asked = SteadyClock::now();
    askForEverything(speed);
    m_socket.flush();
    const int error = await(
        answerLimit, [this] { return answered() && !discarding(); }, true);
    if (error == ETIMEDOUT && answered())
        m_answersPurge = false; // its other answers are those that are needed
    else if (error != 0)
        failOpening(error);
    else
        measure(asked);
    if (!isAsAsked(speed))
        throw PlatformFailure(EINVAL, m_text + u": the line can't run at "_s +
                                          QString::number(speed) +
                                          u" bits per second, 8 data bits"_s);
    m_speed = speed;
    m_ready = true;
}

void RemoteLine::askForEverything(std::uint32_t speed)
{
    using namespace com_port;
    if (!m_ready) {
        ask(setLineStateMask, QByteArray(1, noNotices));
        ask(setModemStateMask, QByteArray(1, noNotices));
        ask(setControl, QByteArray(1, noFlowControl));
        ask(purgeData, QByteArray(1, receivedData));
        m_purged = SteadyClock::now();
    }
    ask(setDataSize, QByteArray(1, eightBits));
    ask(setParity, QByteArray(1, noParity));
    ask(setStopSize, QByteArray(1, oneStopBit));
    ask(setBaudRate, speedValue(speed));
}

/// Whether nothing is due of the answers that are needed.
bool RemoteLine::answered() const
{
    using namespace com_port;
    constexpr std::array needed{setBaudRate, setDataSize, setParity, setStopSize, setControl};
    return std::ranges::all_of(needed, [this](auto each) { return m_questions[each].due == 0; });
}

bool RemoteLine::isAsAsked(std::uint32_t speed) const
{
    using namespace com_port;
    const QByteArray& answer = m_questions[setBaudRate].answer;
    if (answer.size() != 4)
        return false;
    // A receiver stands 3 %.
    const auto actual = std::int64_t{qFromBigEndian<std::uint32_t>(answer.constData())};
    return std::abs(actual - speed) * 100 <= std::int64_t{speed} * 3 &&
           m_questions[setDataSize].answer == QByteArray(1, eightBits) &&
           m_questions[setParity].answer == QByteArray(1, noParity) &&
           m_questions[setStopSize].answer == QByteArray(1, oneStopBit) &&
           m_questions[setControl].answer == QByteArray(1, noFlowControl);
}

/// What an exchange with the server took; the network's part of it comes to every reply.
void RemoteLine::measure(SteadyClock::time_point asked)
{
    m_slowest = std::max(m_slowest, SteadyClock::now() - asked);
}

std::chrono::milliseconds RemoteLine::delay() const
{
    // A network that took so long once may take twice as long when it matters.
    return std::min(longestDelay, std::chrono::duration_cast<milliseconds>(2 * m_slowest));
}

void RemoteLine::ask(std::uint8_t command, const QByteArray& value)
{
    ++m_questions.at(command).due;
    send(telnet::subnegotiation(telnet::comPort, static_cast<char>(command) + value));
}

void RemoteLine::watch(std::function<void()> activity)
{
    m_activity = std::move(activity);
    m_watching = true;
}

void RemoteLine::setWatching(bool on)
{
    m_watching = on;
}

/// Bytes that nobody takes stay in the socket, and then with the server.
void RemoteLine::take()
{
    if (m_received.size() < receiveLimit && m_socket.isReadable()) {
        m_decoder.take(m_socket.readAll(), *this);
        acknowledgeAtOnce(m_socket);
    }
    if (m_watching && m_activity && (!m_received.isEmpty() || m_error != 0))
        m_activity();
}

void RemoteLine::lose(int error)
{
    if (m_error == 0)
        m_error = error;
    take();
}

void RemoteLine::data(QByteArrayView bytes)
{
    if (!m_ready)
        m_words.append(bytes.first(std::min(bytes.size(), longestWords - m_words.size())));
    else if (!discarding())
        m_received += bytes;
}

void RemoteLine::negotiate(std::uint8_t verb, std::uint8_t option)
{
    send(m_options.answer(verb, option));
    if (m_ready && m_options.refused())
        lose(EPROTO);
}

void RemoteLine::subnegotiate(const QByteArray& body)
{
    if (body.size() < 2 || static_cast<std::uint8_t>(body[0]) != telnet::comPort)
        return;
    const auto command = static_cast<std::uint8_t>(body[1]);
    if (command == com_port::suspendFlow || command == com_port::resumeFlow)
        m_suspended = command == com_port::suspendFlow;
    const std::size_t asked = std::size_t{command} - com_port::answerOffset;
    if (asked >= m_questions.size()) // also what is no answer: a notice, whose state we don't use
        return;
    Question& question = m_questions.at(asked);
    question.due = std::max(0, question.due - 1);
    question.answer = body.sliced(2);
}

/// Whether what comes had been received before the last write. Nothing is thrown away for longer
/// than the server may take to answer.
bool RemoteLine::discarding()
{
    int& due = m_questions[com_port::purgeData].due;
    if (due > 0 && SteadyClock::now() - m_purged > answerLimit) {
        due = 0;
        m_answersPurge = false;
    }
    return due > 0;
}

int RemoteLine::discardReceived()
{
    m_received.clear();
    // One question at a time: ser2net drops answers when many are due. What is written meanwhile
    // belongs to the same message, a byte of a boot application.
    if (m_error == 0 && m_answersPurge && !discarding()) {
        m_purged = SteadyClock::now();
        ask(com_port::purgeData, QByteArray(1, com_port::receivedData));
    }
    return m_error;
}

int RemoteLine::receive(QByteArray& received, qsizetype limit)
{
    const QByteArray part = m_received.left(std::max<qsizetype>(limit, 0));
    received += part;
    m_received.remove(0, part.size());
    if (m_received.isEmpty() && m_socket.bytesAvailable() > 0)
        m_decoder.take(m_socket.readAll(), *this);
    return part.isEmpty() && limit > 0 && m_received.isEmpty() ? m_error : 0;
}

int RemoteLine::write(const QByteArray& bytes)
{
    if (const int error = await(suspendLimit, [this] { return !m_suspended; }))
        return error;
    const auto ahead = m_lineBusyUntil - SteadyClock::now() - wireTime(mostQueued, m_speed);
    if (ahead > 0s)
        m_events.pause(std::chrono::ceil<milliseconds>(ahead));
    if (m_error != 0)
        return m_error;
    const auto now = SteadyClock::now();
    m_lineBusyUntil = std::max(now, m_lineBusyUntil) + wireTime(bytes.size(), m_speed);
    m_backlog = m_lineBusyUntil - now;
    m_undrained = true;
    send(telnet::escaped(bytes));
    m_socket.flush();
    const auto taken = [this] { return m_socket.bytesToWrite() <= sendLimit; };
    const int error = await(suspendLimit, taken);
    if (error == ETIMEDOUT)
        lose(EIO); // half a frame must not follow later
    return error == ETIMEDOUT ? EIO : error;
}

int RemoteLine::drain()
{
    if (m_error != 0 || !m_undrained)
        return m_error;
    const auto asked = SteadyClock::now();
    ask(com_port::setBaudRate, speedValue(0));
    m_socket.flush();
    if (const int error = await(answerLimit, [this] { return answered(); }))
        return error;
    measure(asked);
    m_events.pause(std::chrono::ceil<milliseconds>(m_backlog));
    m_undrained = false;
    return m_error;
}

} // namespace fldc
