#pragma once

#include <QString>

namespace fldc {

/// Name of the boot file for the radio whose hardware identifier is @p identifier (up to six
/// characters, the last one "*"; compared exactly). Unknown identifiers have a default file.
[[nodiscard]] QString bootFileFor(QStringView identifier);

} // namespace fldc
