#pragma once

#include <cstdint>

/// Commands of the COM port option (RFC 2217) and the values in use.
namespace fldc::com_port {

enum Command : std::uint8_t {
    setBaudRate = 1, ///< 4 bytes, high byte first; 0 asks for the present one
    setDataSize = 2,
    setParity = 3,
    setStopSize = 4,
    setControl = 5,
    setLineStateMask = 10,
    setModemStateMask = 11,
    purgeData = 12,
    suspendFlow = 108, ///< from the server: it takes no more data until resumeFlow
    resumeFlow = 109,
};

/// The server answers a command with its number and the value that is in effect now.
constexpr std::uint8_t answerOffset = 100;

constexpr char eightBits = 8;
constexpr char noParity = 1;
constexpr char oneStopBit = 1;
constexpr char noFlowControl = 1;
constexpr char noNotices = 0;
constexpr char receivedData = 1; ///< purge what the line has received and the server not sent

} // namespace fldc::com_port
