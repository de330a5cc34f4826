#pragma once

#include <QString>

namespace fldc {

/// The texts that the window, the manager and the protocol show, by number.
enum class Text : int {
    ProductName = 1,
    FamilyName = 2,
    Unknown = 1000,
    BootCode = 1001,
    FpgaImage = 1002,
    HardwareId = 1003,
    RadioApplication = 1004,
    Configuration = 1005,
    Type = 1006,
    CodeAndVersion = 1007,
    StatusColumn = 1008,
    CurrentDownload = 1009,
    Progress = 1010,
    Ok = 1011,
    NoCodeSegments = 1012,
    ChecksumInvalid = 1013,
    NotFound = 1014,
    FlashId = 1015,
    TargetHardware = 1021,
    DeviceId = 1022,
    Dsp = 1023,
    NoCodeComponent = 1024,
    CodeNotValidated = 1025,
    NonStandard = 1026,
    SystemConfigTable = 1027,
    Status = 2000,
    Ready = 2001,
    InitialisingComms = 2002,
    ResettingRadio = 2003,
    DownloadingUpgradeApplication = 2004,
    StartingUpgradeApplication = 2005,
    ReadingConfiguration = 2006,
    SelectingDownloadFile = 2007,
    ValidatingFile = 2008,
    UnlockingFlash = 2009,
    ErasingFlash = 2010,
    DownloadingData = 2011,
    ValidatingDownload = 2012,
    RestartingRadio = 2013,
    CheckingFile = 2014,
    ProcessingFile = 2015,
    ReadingFlash = 2016,
    DownloadSuccessful = 2017,
    LockingFlash = 2018,
    SettingBaudRate = 2019,
    ConfigurationRead = 2020,
    ConfigurationsErased = 2021,
    TooManyConfigurations = 2022,
    SelectingExportFile = 2023,
    NotConnected = 3000,
    SpecialUpgradeMode = 4000,
};

[[nodiscard]] QString displayText(Text text);

} // namespace fldc
