#pragma once

#include <QString>

#include <cstdint>
#include <optional>

namespace fldc {

/// The component's result codes. The numbers are part of the interface to other programs.
enum class Code : std::int32_t {
    Success = 0,
    UserCancelled = 1,
    ConfigurationListTooLong = 2,
    PortDoesNotExist = 11,
    PortInUse = 12,
    PortInUseHere = 13,
    PortTimedOut = 14,
    PortUnspecified = 15,
    RadioDidNotReset = 21,
    RadioDidNotLogOn = 22,
    RadioDidNotComplete = 23,
    RadioTypeNotSupported = 24,
    RadioHardwareMismatch = 25,
    FileSelectionCancelled = 31,
    NoFileSelected = 32,
    FileDoesNotExist = 33,
    FileFormatNotValid = 34,
    FileNotPermitted = 35,
    UpgradeApplicationNotFound = 36,
    FilesNotDownloaded = 37,
    TimerNotCreated = 41,
    NoResponse = 42,
    DataNotInTime = 43,
    MaximumTimeExceeded = 44,
    UnknownRadioError = 51,
    AddressError = 52,
    DataError = 53,
    DataLength = 54,
    Checksum = 55,
    BaudRateNotSet = 56,
    DataExpected = 57,
    RetriesExceeded = 58,
    FlashBlocks = 59,
    CommandNotRecognised = 8001,
    ParserChecksum = 8002,
    IntercharacterTimeout = 8003,
    UnsupportedBaudRate = 8101,
    ConfigurationNotFound = 8102,
    FlashWriteProtected = 8103,
    FlashLocked = 8104,
    FlashNotErased = 8105,
    InvalidFlashAddress = 8106,
    FlashStructureInvalid = 8107,
    CommandDataLength = 8108,
    FlashAddressMissing = 8109,
    NetworkComponentNotFound = 8110,
    MemoryDeviceInvalid = 8111,
    NeckMessageTimeout = 8112,
    ComponentNotAuthorised = 8113,
    FlashAddressDoesNotExist = 8201,
    ZlibVersion = 9001,
    ZlibBuffer = 9002,
    ZlibMemory = 9003,
    ZlibData = 9004,
    ZlibStream = 9005,
    ZlibStreamEnd = 9008,
    ZlibNeedDictionary = 9009,
    RuntimeError = 9011,
};

/// Message texts stand in one table under this number plus the code.
inline constexpr std::int32_t messageBase = 10000;

/// The message of a code; nothing for a number without one.
[[nodiscard]] std::optional<QString> messageOf(std::int32_t code);

} // namespace fldc
