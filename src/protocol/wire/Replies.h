#pragma once

#include "shared/ErrorCodes.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace fldc {

// Words of the radio's replies.

inline constexpr const char16_t* doneWord = u"AFAF"; ///< ends a reply
inline constexpr const char16_t* busyWord = u"AEAE"; ///< the radio is still working

/// What a fault word at the start of a reply means.
struct Fault {
    std::uint16_t word;
    Code code;   ///< recorded as the last error
    bool repeat; ///< sending the same frame again may cure it
};

inline constexpr std::array faults{
    Fault{0x8001, Code::CommandNotRecognised, true},
    Fault{0x8002, Code::Checksum, true},
    Fault{0x8003, Code::IntercharacterTimeout, true},
    Fault{0x8101, Code::UnsupportedBaudRate, false},
    Fault{0x8102, Code::ConfigurationNotFound, false},
    Fault{0x8103, Code::FlashWriteProtected, false},
    Fault{0x8104, Code::FlashLocked, false},
    Fault{0x8105, Code::FlashNotErased, false},
    Fault{0x8106, Code::InvalidFlashAddress, false},
    Fault{0x8107, Code::FlashStructureInvalid, false},
    Fault{0x8108, Code::CommandDataLength, false},
    Fault{0x8109, Code::FlashAddressMissing, false},
    Fault{0x810A, Code::NetworkComponentNotFound, false},
    Fault{0x810B, Code::MemoryDeviceInvalid, false},
    Fault{0x810C, Code::NeckMessageTimeout, false},
    Fault{0x810E, Code::Success, false},
    Fault{0x810F, Code::ComponentNotAuthorised, false},
};

static_assert(std::ranges::adjacent_find(faults, std::ranges::greater_equal{}, &Fault::word) ==
                  faults.end(),
              "each word once, in ascending order");

/// First bytes of the records that a reply may carry.
inline constexpr std::array<std::uint8_t, 4> recordHeaders{0x43, 0x46, 0x49, 0x52};

} // namespace fldc
