#pragma once

#include <QString>

namespace fldc {

/// The hardware identifier in what a radio says at log-on: the first "*" and up to five characters
/// before it, all of them from the beginning when there are fewer. Empty without "*".
[[nodiscard]] QString hardwareIdentifier(const QString& text);

/// Name of the boot file for the radio whose hardware identifier is @p identifier (up to six
/// characters, the last one "*"; compared exactly). Unknown identifiers have a default file.
[[nodiscard]] QString bootFileFor(QStringView identifier);

/// True for the name (without folder, compared exactly) of a file that some radio is sent as its
/// boot application.
[[nodiscard]] bool isBootFile(QStringView fileName);

} // namespace fldc
