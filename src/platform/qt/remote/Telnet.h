#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <cstdint>

/// The telnet protocol (RFC 854, RFC 855) as far as a serial line needs it: bytes in, bytes out.
namespace fldc::telnet {

enum Command : std::uint8_t {
    subnegotiationEnd = 240,
    subnegotiationBegin = 250,
    will = 251,
    wont = 252,
    doIt = 253,
    dont = 254,
    interpretAsCommand = 255,
};

enum Option : std::uint8_t {
    binaryTransmission = 0, ///< RFC 856
    suppressGoAhead = 3,    ///< RFC 858
    comPort = 44,           ///< RFC 2217
};

/// @p bytes as data of the stream: 255 is sent twice.
[[nodiscard]] QByteArray escaped(const QByteArray& bytes);
[[nodiscard]] QByteArray negotiation(std::uint8_t verb, std::uint8_t option);
/// @p body is escaped.
[[nodiscard]] QByteArray subnegotiation(std::uint8_t option, const QByteArray& body);

/// What a stream says, in its order.
class IReceiver {
public:
    virtual ~IReceiver() = default;
    virtual void data(QByteArrayView bytes) = 0;
    /// @p verb: will, wont, doIt or dont.
    virtual void negotiate(std::uint8_t verb, std::uint8_t option) = 0;
    /// @p body: with 255 single again; never empty, the option is its first byte.
    virtual void subnegotiate(const QByteArray& body) = 0;
};

/// Takes a stream apart, whatever pieces it comes in. Commands of no use here are passed over; of
/// a subnegotiation longer than any that is known only the beginning is kept.
class Decoder {
public:
    void take(QByteArrayView bytes, IReceiver& receiver);

private:
    enum class State { Data, Command, Verb, Body, BodyCommand };

    [[nodiscard]] State command(std::uint8_t byte, IReceiver& receiver);
    [[nodiscard]] State bodyCommand(std::uint8_t byte, IReceiver& receiver);
    void keep(std::uint8_t byte);

    State m_state = State::Data;
    std::uint8_t m_verb = 0;
    QByteArray m_body;
};

} // namespace fldc::telnet
