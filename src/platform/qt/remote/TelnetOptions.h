#pragma once

#include "platform/qt/remote/Telnet.h"

#include <QByteArray>

#include <array>
#include <cstdint>

namespace fldc::telnet {

/// The options of one connection: binary transmission and no go-ahead both ways, and the COM port
/// option. Everything else is refused. An answer is given only to what changes something, so that
/// two ends can't answer each other for ever.
class Options {
public:
    /// What is said first.
    [[nodiscard]] QByteArray offer();
    /// What to answer; empty for nothing.
    [[nodiscard]] QByteArray answer(std::uint8_t verb, std::uint8_t option);

    /// Everything that a serial line needs is agreed on. Go-ahead is not needed: a server that
    /// keeps it sends a command now and then, which is passed over.
    [[nodiscard]] bool agreed() const;
    /// The other end refused something that is needed, at the beginning or later.
    [[nodiscard]] bool refused() const;

private:
    enum class State { Off, Asked, On, Refused };
    struct Side {
        bool ours; ///< what we do, else what the other end does
        std::uint8_t option;
        bool needed;
        State state = State::Off;
    };

    std::array<Side, 5> m_sides{{
        {true, binaryTransmission, true},
        {false, binaryTransmission, true},
        {true, suppressGoAhead, false},
        {false, suppressGoAhead, false},
        {true, comPort, true},
    }};
};

} // namespace fldc::telnet
