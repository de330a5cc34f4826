#include "shared/DisplayTexts.h"

#include <algorithm>
#include <array>

namespace fldc {

namespace {

struct Entry {
    Text number;
    const char16_t* text;
};

// clang-format off
constexpr std::array entries{
    Entry{Text::ProductName, u"Kelvane Download Component"},
    Entry{Text::FamilyName, u"RV4000 Download Component"},
    Entry{Text::Unknown, u"Unknown"},
    Entry{Text::BootCode, u"Boot Code"},
    Entry{Text::FpgaImage, u"FPGA Image"},
    Entry{Text::HardwareId, u"Hardware ID"},
    Entry{Text::RadioApplication, u"Radio Application"},
    Entry{Text::Configuration, u"Configuration"},
    Entry{Text::Type, u"Type"},
    Entry{Text::CodeAndVersion, u"Code and Version"},
    Entry{Text::StatusColumn, u"Status"},
    Entry{Text::CurrentDownload, u"Current Download"},
    Entry{Text::Progress, u"Progress"},
    Entry{Text::Ok, u"OK"},
    Entry{Text::NoCodeSegments, u"No code segments"},
    Entry{Text::ChecksumInvalid, u"Checksum invalid"},
    Entry{Text::NotFound, u"Not found"},
    Entry{Text::FlashId, u"Flash ID"},
    Entry{Text::TargetHardware, u"Target Hardware"},
    Entry{Text::DeviceId, u"Device ID"},
    Entry{Text::Dsp, u"DSP"},
    Entry{Text::NoCodeComponent, u"No Code Component"},
    Entry{Text::CodeNotValidated, u"Code Not Validated"},
    Entry{Text::NonStandard, u"Non Standard"},
    Entry{Text::SystemConfigTable, u"System Config Table"},
    Entry{Text::Status, u"Status"},
    Entry{Text::Ready, u"Ready"},
    Entry{Text::InitialisingComms, u"Initialising comms..."},
    Entry{Text::ResettingRadio, u"Resetting radio..."},
    Entry{Text::DownloadingUpgradeApplication, u"Downloading upgrade application..."},
    Entry{Text::StartingUpgradeApplication, u"Starting upgrade application..."},
    Entry{Text::ReadingConfiguration, u"Reading current configuration..."},
    Entry{Text::SelectingDownloadFile, u"Selecting file for download..."},
    Entry{Text::ValidatingFile, u"Validating file..."},
    Entry{Text::UnlockingFlash, u"Unlocking flash..."},
    Entry{Text::ErasingFlash, u"Erasing flash..."},
    Entry{Text::DownloadingData, u"Downloading data..."},
    Entry{Text::ValidatingDownload, u"Validating download..."},
    Entry{Text::RestartingRadio, u"Restarting radio..."},
    Entry{Text::CheckingFile, u"Checking file against flash information..."},
    Entry{Text::ProcessingFile, u"Processing file information..."},
    Entry{Text::ReadingFlash, u"Reading flash information..."},
    Entry{Text::DownloadSuccessful, u"Download successful"},
    Entry{Text::LockingFlash, u"Locking flash..."},
    Entry{Text::SettingBaudRate, u"Setting baud rate..."},
    Entry{Text::ConfigurationRead, u"Configuration successfully read"},
    Entry{Text::ConfigurationsErased, u"Configuration(s) successfully erased"},
    Entry{Text::TooManyConfigurations, u"Too many Configurations to report"},
    Entry{Text::SelectingExportFile, u"Selecting file for export..."},
    Entry{Text::NotConnected, u"Not connected"},
    Entry{Text::SpecialUpgradeMode,
          u"The application is set to run in special upgrade mode. Do you wish to continue "
          u"in special upgrade mode (you will need to do a hard reset)?"},
};
// clang-format on

static_assert(std::ranges::adjacent_find(entries, std::ranges::greater_equal{}, &Entry::number) ==
                  entries.end(),
              "each number once, in ascending order");

} // namespace

QString displayText(Text text)
{
    const auto* found = std::ranges::lower_bound(entries, text, {}, &Entry::number);
    return found != entries.end() && found->number == text ? QString::fromUtf16(found->text)
                                                           : QString();
}

} // namespace fldc
