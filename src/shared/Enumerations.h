#pragma once

#include <cstdint>

namespace fldc {

// Published enumerations; the values are part of the interface to other programs.

enum enmRadioType : std::int32_t {
    RADIO_FMX = 4100,
    RADIO_MFX = 4200,
    RV4100 = 1,
    RV4200 = 2,
    RV6100 = 3,
    RH6100 = 4,
};

enum enmAsyncTaskID : std::int32_t {
    eNone = 0,
    eDownload = 1,
    eLoadFiles = 2,
    eReportConfigurations = 3,
};

enum enmAccessLevel : std::int32_t {
    DEFAULT_ACCESS = 0,
    UNLIMITED_ACCESS = 10,
};

} // namespace fldc
