// The command table, and what every command has in common.
#include "device/UpgradeMode.h"

#include <algorithm>
#include <array>
#include <limits>

namespace simulator {

namespace {

/// How many data bytes a command takes; their number is even in any case.
struct Length {
    std::size_t least;
    std::size_t most;
};
constexpr Length none{0, 0};
constexpr Length exactly(std::size_t count)
{
    return {count, count};
}
constexpr Length atLeast(std::size_t count)
{
    return {count, 510};
}

} // namespace

struct Command {
    std::uint8_t code;
    std::string_view name;
    Length length;
    bool touchesFlash; // wants an authorised component
    FaultWord (UpgradeMode::*handler)(ByteView);

    static const std::array<Command, 18> table;
};

constexpr std::array<Command, 18> Command::table{{
    {0x30, "Set Baud Rate", exactly(2), false, &UpgradeMode::setBaudRate},
    {0x31, "Report Configuration", none, false, &UpgradeMode::reportConfiguration},
    {0x32, "Unlock Flash", atLeast(2), true, &UpgradeMode::unlockFlash},
    {0x33, "Erase Flash", atLeast(2), true, &UpgradeMode::eraseFlash},
    {0x34, "Set Flash Address", exactly(4), true, &UpgradeMode::setFlashAddress},
    {0x35, "Write Flash Data", atLeast(2), true, &UpgradeMode::writeFlashData},
    {0x36, "Reset Radio", none, false, &UpgradeMode::resetRadio},
    {0x37, "Report Flash Structure", none, false, &UpgradeMode::reportFlashStructure},
    {0x38, "Confirm Ready", none, false, &UpgradeMode::confirmReady},
    {0x39, "Lock Flash", atLeast(2), true, &UpgradeMode::lockFlash},
    {0x3A, "Set Memory Target", exactly(2), false, &UpgradeMode::setMemoryTarget},
    {0x3C, "Set Flash Address (Inflate)", exactly(4), true, &UpgradeMode::setFlashAddressInflate},
    {0x3D, "Write Flash Data (Inflate)", atLeast(2), true, &UpgradeMode::writeFlashDataInflate},
    {0x3E, "Report Flash Structure Regions", none, false, &UpgradeMode::reportFlashRegions},
    {0x40, "Authorise Firmware Load", atLeast(2), false, &UpgradeMode::authoriseComponent},
    {0x42, "Authorise Firmware Load by J Number", atLeast(4), false,
     &UpgradeMode::authoriseOnDevice},
    {0x70, "Flash ID", none, false, &UpgradeMode::reportFlashId},
    {0x7F, "Flash OTP", none, false, &UpgradeMode::reportFlashOtp},
}};

const Command* UpgradeMode::find(std::uint8_t code)
{
    const auto* found = std::find_if(Command::table.begin(), Command::table.end(),
                                     [&](const Command& command) { return command.code == code; });
    return found == Command::table.end() ? nullptr : found;
}

std::string_view UpgradeMode::commandName(std::uint8_t code)
{
    const Command* command = find(code);
    return command == nullptr ? "no known command" : command->name;
}

Answer UpgradeMode::refusal(FaultWord word)
{
    return {.pieces = {Piece{wordsToBytes({static_cast<std::uint16_t>(word), doneWord})}}};
}

Answer UpgradeMode::carryOut(std::uint8_t code, ByteView data)
{
    const Command* command = find(code);
    const bool unknown =
        command == nullptr || m_faults.has(FaultKind::Unknown, code) ||
        std::count(m_profile.unknownCommands.begin(), m_profile.unknownCommands.end(), code) > 0;
    m_answer = {};
    FaultWord fault = FaultWord::None;
    if (unknown)
        fault = FaultWord::UnknownCommand;
    else if (data.size() < command->length.least || data.size() > command->length.most)
        fault = FaultWord::InvalidLength;
    else if (command->touchesFlash && m_profile.wantsAuthorisation && m_authorised.empty())
        fault = FaultWord::NotAuthorised;
    else
        fault = (this->*command->handler)(data);
    if (fault == FaultWord::None)
        return std::move(m_answer);
    m_log.event("Refused " + hex(code, 2) + " " + std::string(commandName(code)) + ": " +
                hex(static_cast<std::uint16_t>(fault), 4) + " " + std::string(meaning(fault)));
    return refusal(fault);
}

std::string_view meaning(FaultWord word)
{
    switch (word) {
    case FaultWord::None:
        return "done";
    case FaultWord::UnknownCommand:
        return "command not recognised";
    case FaultWord::BadChecksum:
        return "checksum error";
    case FaultWord::IntercharacterTimeout:
        return "intercharacter time-out";
    case FaultWord::UnsupportedSpeed:
        return "unsupported baud rate";
    case FaultWord::FlashLocked:
        return "flash locked";
    case FaultWord::FlashNotErased:
        return "flash not erased";
    case FaultWord::InvalidAddress:
        return "invalid flash address";
    case FaultWord::InvalidLength:
        return "data length invalid for the command";
    case FaultWord::NoAddress:
        return "no flash address set";
    case FaultWord::NetworkComponentUnknown:
        return "network component not found";
    case FaultWord::MemoryDeviceUnknown:
        return "no such memory device";
    case FaultWord::NotAuthorised:
        return "no component authorised";
    }
    return "as told";
}

} // namespace simulator
