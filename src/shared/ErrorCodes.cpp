#include "shared/ErrorCodes.h"

#include <algorithm>
#include <array>

namespace fldc {

namespace {

struct Message {
    Code code;
    const char16_t* text;
};

// clang-format off
constexpr std::array messages{
    Message{Code::Success, u"Success"},
    Message{Code::UserCancelled, u"User cancelled upgrade"},
    Message{Code::ConfigurationListTooLong, u"Configuration list too long"},
    Message{Code::PortDoesNotExist, u"Serial port does not exist"},
    Message{Code::PortInUse, u"Serial port in use by another application"},
    Message{Code::PortInUseHere, u"Serial port in use by this application"},
    Message{Code::PortTimedOut, u"Serial port timed out"},
    Message{Code::PortUnspecified, u"Serial port (unspecified error)"},
    Message{Code::RadioDidNotReset, u"Radio did not reset"},
    Message{Code::RadioDidNotLogOn, u"Radio did not logon to upgrade mode"},
    Message{Code::RadioDidNotComplete, u"Radio did not complete"},
    Message{Code::RadioTypeNotSupported, u"Radio type not supported"},
    Message{Code::RadioHardwareMismatch, u"Radio hardware mismatch"},
    Message{Code::FileSelectionCancelled, u"User cancelled file selection"},
    Message{Code::NoFileSelected, u"No file was selected"},
    Message{Code::FileDoesNotExist, u"File does not exist"},
    Message{Code::FileFormatNotValid, u"File format is not valid"},
    Message{Code::FileNotPermitted, u"User doesn't have permission to use this file"},
    Message{Code::UpgradeApplicationNotFound, u"Required upgrade application file not found"},
    Message{Code::FilesNotDownloaded,
            u"Some of the files selected for download have not been successfully "
            u"downloaded. The following items have not been downloaded to any device:"},
    Message{Code::TimerNotCreated, u"Failed to create timer"},
    Message{Code::NoResponse, u"Timer expired - no response received"},
    Message{Code::DataNotInTime, u"Timer expired - data not received in time"},
    Message{Code::MaximumTimeExceeded, u"Timer expired - exceeded maximum time"},
    Message{Code::UnknownRadioError, u"Radio returned an unknown error"},
    Message{Code::AddressError, u"Protocol - error in address"},
    Message{Code::DataError, u"Protocol - error in data"},
    Message{Code::DataLength, u"Protocol - the data is not the correct length"},
    Message{Code::Checksum, u"Protocol - checksum error"},
    Message{Code::BaudRateNotSet, u"Protocol - failed to set baud rate"},
    Message{Code::DataExpected, u"Protocol - data expected but none returned"},
    Message{Code::RetriesExceeded, u"Protocol - number of retries exceeded"},
    Message{Code::FlashBlocks, u"Protocol - unlock/erase flash block error"},
    Message{Code::CommandNotRecognised, u"Parser - command not recognised"},
    Message{Code::ParserChecksum, u"Parser - checksum error"},
    Message{Code::IntercharacterTimeout, u"Parser - intercharacter timeout"},
    Message{Code::UnsupportedBaudRate, u"Response - unsupported baud rate"},
    Message{Code::ConfigurationNotFound, u"Response - configuration not found"},
    Message{Code::FlashWriteProtected, u"Response - flash write protected"},
    Message{Code::FlashLocked, u"Response - flash locked"},
    Message{Code::FlashNotErased, u"Response - flash not erased"},
    Message{Code::InvalidFlashAddress, u"Response - invalid flash address"},
    Message{Code::FlashStructureInvalid, u"Response - flash structure invalid"},
    Message{Code::CommandDataLength, u"Response - data length invalid for command"},
    Message{Code::FlashAddressMissing,
            u"Response - trying to write to the FLASH when the address has not been "
            u"specified"},
    Message{Code::NetworkComponentNotFound, u"Response - network component ID not found"},
    Message{Code::MemoryDeviceInvalid, u"Response - memory device ID is invalid"},
    Message{Code::NeckMessageTimeout,
            u"Response - radio neck message operations for command exceeded specified "
            u"timeouts"},
    Message{Code::ComponentNotAuthorised, u"Response - firmware code component not authorised"},
    Message{Code::FlashAddressDoesNotExist,
            u"The desired flash address does not exist.  The flash device may be smaller "
            u"than required."},
    Message{Code::ZlibVersion, u"Z_VERSION_ERROR"},
    Message{Code::ZlibBuffer, u"Z_BUF_ERROR"},
    Message{Code::ZlibMemory, u"Z_MEM_ERROR"},
    Message{Code::ZlibData, u"Z_DATA_ERROR"},
    Message{Code::ZlibStream, u"Z_STREAM_ERROR"},
    Message{Code::ZlibStreamEnd, u"Z_STREAM_END"},
    Message{Code::ZlibNeedDictionary, u"Z_NEED_DICT"},
    Message{Code::RuntimeError, u"Runtime Error has occurred - see GetLastError for details"},
};
// clang-format on

static_assert(std::ranges::adjacent_find(messages, std::ranges::greater_equal{}, &Message::code) ==
                  messages.end(),
              "each code once, in ascending order");

} // namespace

std::optional<QString> messageOf(std::int32_t code)
{
    const auto* found =
        std::ranges::lower_bound(messages, static_cast<Code>(code), {}, &Message::code);
    if (found == messages.end() || found->code != static_cast<Code>(code))
        return std::nullopt;
    return QString::fromUtf16(found->text);
}

} // namespace fldc
