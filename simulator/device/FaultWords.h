// The words with which the radio refuses.
#pragma once

#include <cstdint>
#include <string_view>

namespace simulator {

enum class FaultWord : std::uint16_t {
    None = 0,
    UnknownCommand = 0x8001,
    BadChecksum = 0x8002,
    IntercharacterTimeout = 0x8003,
    UnsupportedSpeed = 0x8101,
    FlashLocked = 0x8104,
    FlashNotErased = 0x8105,
    InvalidAddress = 0x8106,
    InvalidLength = 0x8108,
    NoAddress = 0x8109,
    NetworkComponentUnknown = 0x810A,
    MemoryDeviceUnknown = 0x810B,
    NotAuthorised = 0x810F,
};

/// What people are told of it.
std::string_view meaning(FaultWord word);

} // namespace simulator
