#include "platform/qt/remote/Telnet.h"

#include <utility>

namespace fldc::telnet {

namespace {

constexpr qsizetype longestBody = 256;
constexpr char escape = static_cast<char>(interpretAsCommand);

} // namespace

QByteArray escaped(const QByteArray& bytes)
{
    return QByteArray(bytes).replace(QByteArray(1, escape), QByteArray(2, escape));
}

QByteArray negotiation(std::uint8_t verb, std::uint8_t option)
{
    return QByteArray(1, escape).append(static_cast<char>(verb)).append(static_cast<char>(option));
}

QByteArray subnegotiation(std::uint8_t option, const QByteArray& body)
{
    return negotiation(subnegotiationBegin, option)
        .append(escaped(body))
        .append(negotiation(subnegotiationEnd, 0).chopped(1));
}

void Decoder::take(QByteArrayView bytes, IReceiver& receiver)
{
    qsizetype run = 0; // where the data begin that have not been handed over
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        const auto byte = static_cast<std::uint8_t>(bytes[i]);
        if (m_state == State::Data && byte != interpretAsCommand)
            continue;
        if (m_state == State::Data) {
            if (i > run)
                receiver.data(bytes.sliced(run, i - run));
            m_state = State::Command;
        } else if (m_state == State::Command) {
            m_state = command(byte, receiver);
        } else if (m_state == State::Verb) {
            receiver.negotiate(m_verb, byte);
            m_state = State::Data;
        } else if (m_state == State::BodyCommand) {
            m_state = bodyCommand(byte, receiver);
        } else if (byte == interpretAsCommand) {
            m_state = State::BodyCommand;
        } else {
            keep(byte);
        }
        run = i + 1;
    }
    if (m_state == State::Data && run < bytes.size())
        receiver.data(bytes.sliced(run));
}

Decoder::State Decoder::command(std::uint8_t byte, IReceiver& receiver)
{
    if (byte == interpretAsCommand)
        receiver.data(QByteArrayView(&escape, 1));
    if (byte == subnegotiationBegin) {
        m_body.clear();
        return State::Body;
    }
    m_verb = byte;
    return byte >= will && byte <= dont ? State::Verb : State::Data;
}

// A body that is broken off by another command has no end: what it said is dropped.
Decoder::State Decoder::bodyCommand(std::uint8_t byte, IReceiver& receiver)
{
    if (byte == interpretAsCommand) {
        keep(byte);
        return State::Body;
    }
    if (byte != subnegotiationEnd)
        return command(byte, receiver);
    if (const QByteArray body = std::exchange(m_body, {}); !body.isEmpty())
        receiver.subnegotiate(body);
    return State::Data;
}

void Decoder::keep(std::uint8_t byte)
{
    if (m_body.size() < longestBody)
        m_body.append(static_cast<char>(byte));
}

} // namespace fldc::telnet
