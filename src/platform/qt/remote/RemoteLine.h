#pragma once

#include "platform/qt/remote/Telnet.h"
#include "platform/qt/remote/TelnetOptions.h"
#include "platform/qt/serial/ILine.h"

#include <QByteArray>
#include <QString>
#include <QTcpSocket>

#include <array>
#include <chrono>
#include <functional>

namespace fldc {

class IEvents;

/// A serial line of another machine, reached over RFC 2217. Every wait serves events and is
/// bounded: 10 s for the connection, 5 s for the options, 3 s for an answer of the server, 5 s for
/// a server that takes no data. A connection that drops is a line that hung up; one that falls
/// silent (a cable, a router) is noticed after 25 s.
///
/// What the server received from the radio before a write does not come after it: the server is
/// told to throw it away and its answer awaited in the stream, without holding up the write.
///
/// Drained means: the server has answered a question that it was asked behind the data, so it has
/// them all; then the time has passed that they take on the line. That its driver and its adapter
/// are empty is more than the protocol can tell.
class RemoteLine final : public ILine, private telnet::IReceiver {
public:
    /// Connects and agrees on the options; gives up when @p giveUp says so (ECANCELED). Throws 8002
    /// when there is no such place, name or listener, 8005 when the server says that the port is in
    /// use, EPROTO when it offers no serial line, else the errno that fits.
    RemoteLine(const QString& text, IEvents& events, std::function<bool()> giveUp);
    ~RemoteLine() override;
    RemoteLine(const RemoteLine&) = delete;
    RemoteLine& operator=(const RemoteLine&) = delete;

    /// The answers count: another speed than the one asked for is one that the line can't run at.
    void configure(std::uint32_t speed) override;
    void watch(std::function<void()> activity) override;
    void setWatching(bool on) override;

    [[nodiscard]] int receive(QByteArray& received, qsizetype limit) override;
    [[nodiscard]] int write(const QByteArray& bytes) override;
    [[nodiscard]] int drain() override;
    void drainLast() noexcept override { m_socket.flush(); }
    [[nodiscard]] int discardReceived() override;

    [[nodiscard]] std::chrono::milliseconds delay() const override;
    [[nodiscard]] bool outlivesReopening() const override { return m_error == 0; }

private:
    using milliseconds = std::chrono::milliseconds;
    using SteadyClock = std::chrono::steady_clock;

    /// A command's answers: how many are due, and what the last one said.
    struct Question {
        int due = 0;
        QByteArray answer;
    };

    void data(QByteArrayView bytes) override;
    void negotiate(std::uint8_t verb, std::uint8_t option) override;
    void subnegotiate(const QByteArray& body) override;

    void connectTo(const QString& text);
    void take();
    void lose(int error);
    void ask(std::uint8_t command, const QByteArray& value);
    void send(const QByteArray& bytes) { m_socket.write(bytes); }
    [[nodiscard]] int await(milliseconds longest, const std::function<bool()>& done,
                            bool mayGiveUp = false);
    [[nodiscard]] bool answered() const;
    [[nodiscard]] bool discarding();
    void askForEverything(std::uint32_t speed);
    [[nodiscard]] bool isAsAsked(std::uint32_t speed) const;
    void measure(SteadyClock::time_point asked);
    [[noreturn]] void failOpening(int error) const;

    QString m_text;
    IEvents& m_events;
    std::function<bool()> m_giveUp;
    std::function<void()> m_activity;
    bool m_watching = false;

    telnet::Decoder m_decoder;
    telnet::Options m_options;
    std::array<Question, 13> m_questions; ///< by command
    bool m_answersPurge = true;
    SteadyClock::time_point m_purged;
    bool m_suspended = false;

    QByteArray m_received;
    QByteArray m_words; ///< what the server said before the line was ours
    bool m_ready = false;
    int m_error = 0;
    QString m_errorText;

    std::uint32_t m_speed = 0;
    bool m_undrained = false;
    SteadyClock::time_point m_lineBusyUntil;
    SteadyClock::duration m_backlog{}; ///< line time of what was not sent at the last write
    SteadyClock::duration m_slowest{}; ///< of the server's answers
    QTcpSocket m_socket;               ///< last: it must not report to what has gone
};

} // namespace fldc
