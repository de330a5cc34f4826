#pragma once

#include <algorithm>
#include <array>
#include <cstdint>

namespace fldc {

/// Command codes that the radio understands in upgrade mode; the first byte of a frame.
enum class Command : std::uint8_t {
    SetBaudRate = 0x30,
    ReportConfiguration = 0x31,
    UnlockFlash = 0x32,
    EraseFlash = 0x33,
    SetFlashAddress = 0x34,
    WriteFlashData = 0x35,
    ResetRadio = 0x36,
    ReportFlashStructure = 0x37,
    ConfirmReady = 0x38,
    LockFlash = 0x39,
    SetMemoryTarget = 0x3A,
    SetFlashAddressInflate = 0x3C,
    WriteFlashDataInflate = 0x3D,
    ReportFlashRegions = 0x3E,
    AuthoriseComponent = 0x40,
    AuthoriseByMask = 0x41,
    AuthoriseComponentOnDevice = 0x42,
    FlashId = 0x70,
    FlashOtp = 0x7F,
};

struct CommandName {
    Command command;
    const char16_t* name;
};

/// Names for the trace lines of the download log. AuthoriseComponent has none.
inline constexpr std::array commandNames{
    CommandName{Command::SetBaudRate, u"Set Baud Rate"},
    CommandName{Command::ReportConfiguration, u"Report Configuration"},
    CommandName{Command::UnlockFlash, u"Unlock Flash"},
    CommandName{Command::EraseFlash, u"Erase Flash"},
    CommandName{Command::SetFlashAddress, u"Set Flash Address"},
    CommandName{Command::WriteFlashData, u"Write Flash Data"},
    CommandName{Command::ResetRadio, u"Reset Radio"},
    CommandName{Command::ReportFlashStructure, u"Report Flash Structure"},
    CommandName{Command::ConfirmReady, u"Confirm Ready"},
    CommandName{Command::LockFlash, u"Lock Flash"},
    CommandName{Command::SetMemoryTarget, u"Set Memory Target"},
    CommandName{Command::SetFlashAddressInflate, u"Set Flash Address (Inflate)"},
    CommandName{Command::WriteFlashDataInflate, u"Write Flash Data (Inflate)"},
    CommandName{Command::ReportFlashRegions, u"Report Flash Structure Regions"},
    CommandName{Command::AuthoriseComponent, u""},
    CommandName{Command::AuthoriseByMask, u"Authorise Firmware Load by restriction mask"},
    CommandName{Command::AuthoriseComponentOnDevice, u"Authorise Firmware Load by J Number"},
    CommandName{Command::FlashId, u"Flash ID"},
    CommandName{Command::FlashOtp, u"Flash OTP"},
};

static_assert(std::ranges::adjacent_find(commandNames, std::ranges::greater_equal{},
                                         &CommandName::command) == commandNames.end(),
              "each command once, in ascending order");

/// Name of a command for the trace; empty for a code without one.
[[nodiscard]] constexpr const char16_t* nameOf(Command command)
{
    const auto* found = std::ranges::find(commandNames, command, &CommandName::command);
    return found == commandNames.end() ? u"" : found->name;
}

} // namespace fldc
